# Shared by the two mingw-w64 toolchain files, which set CMAKE_SYSTEM_PROCESSOR
# and TAVRINE_MINGW_TRIPLE first.
set(CMAKE_SYSTEM_NAME Windows)

# The -posix compilers: the win32 thread model lacks std::thread/std::mutex,
# which GoogleTest needs.
set(CMAKE_C_COMPILER ${TAVRINE_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TAVRINE_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${TAVRINE_MINGW_TRIPLE}-windres)
find_program(TAVRINE_WIDL ${TAVRINE_MINGW_TRIPLE}-widl)

set(CMAKE_FIND_ROOT_PATH /usr/${TAVRINE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest runs the .exe files through Wine. The overrides keep Wine from offering
# to install Gecko and Mono; WINEPREFIX is taken from the caller's environment.
find_program(TAVRINE_WINE wine REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR
    env WINEDEBUG=-all "WINEDLLOVERRIDES=mscoree,mshtml=" ${TAVRINE_WINE})

# For splitting the debug information off the release binaries.
set(CMAKE_OBJCOPY ${TAVRINE_MINGW_TRIPLE}-objcopy CACHE FILEPATH "")
