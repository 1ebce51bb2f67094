# Cross build for 64-bit Windows with Debian's mingw-w64; tests run under Wine.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TAVRINE_MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-common.cmake)
