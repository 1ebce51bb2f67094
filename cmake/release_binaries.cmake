# What every Windows binary of the build gets: a VERSIONINFO resource with the
# project's version, and (TAVRINE_SPLIT_DEBUG) its debug information moved to
# "<file>.debug" beside it, found again through a .gnu_debuglink section.
# Included before the subdirectories (the link rules it changes are inherited
# by them); tavrine_finish_windows_binaries() at the end adds the resources to
# every program and DLL it finds in the build's folders, so a new program gets
# both without asking.

set(TAVRINE_PRODUCT_NAME "TavrinEUI" CACHE STRING "Product name in the version resources and the installer")
set(TAVRINE_COMPANY_NAME "Brennick" CACHE STRING "Company name in the version resources and the installer")
option(TAVRINE_SPLIT_DEBUG "Strip the binaries and keep their debug information in .debug files" OFF)

set(_tavrine_version_parts ${PROJECT_VERSION_MAJOR} ${PROJECT_VERSION_MINOR} ${PROJECT_VERSION_PATCH} ${PROJECT_VERSION_TWEAK})
list(TRANSFORM _tavrine_version_parts REPLACE "^$" "0")
list(JOIN _tavrine_version_parts "," TAVRINE_VERSION_COMMAS)

if(TAVRINE_SPLIT_DEBUG)
  # Appended to the link rules, so that every executable and DLL is split
  # right after it is linked; the link records only the .debug file's name.
  set(_tavrine_split
      " && ${CMAKE_OBJCOPY} --only-keep-debug <TARGET> <TARGET>.debug"
      " && ${CMAKE_OBJCOPY} --strip-debug --strip-unneeded --add-gnu-debuglink=<TARGET>.debug <TARGET>")
  string(CONCAT _tavrine_split ${_tavrine_split})
  foreach(rule CMAKE_C_LINK_EXECUTABLE CMAKE_CXX_LINK_EXECUTABLE CMAKE_C_CREATE_SHARED_LIBRARY
               CMAKE_CXX_CREATE_SHARED_LIBRARY)
    string(APPEND ${rule} "${_tavrine_split}")
  endforeach()
endif()

function(_tavrine_collect_binaries dir out)
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  set(found)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE" OR type STREQUAL "SHARED_LIBRARY")
      list(APPEND found ${target})
    endif()
  endforeach()
  get_property(children DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(child IN LISTS children)
    _tavrine_collect_binaries(${child} child_found)
    list(APPEND found ${child_found})
  endforeach()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

function(_tavrine_add_version_resource target)
  get_target_property(type ${target} TYPE)
  get_target_property(internal_name ${target} OUTPUT_NAME)
  if(NOT internal_name)
    set(internal_name ${target})
  endif()
  get_target_property(suffix ${target} SUFFIX)
  if(NOT suffix)
    if(type STREQUAL "SHARED_LIBRARY")
      set(suffix ${CMAKE_SHARED_LIBRARY_SUFFIX})
    else()
      set(suffix ${CMAKE_EXECUTABLE_SUFFIX})
    endif()
  endif()
  set(file_name ${internal_name}${suffix})
  if(type STREQUAL "SHARED_LIBRARY")
    set(file_type VFT_DLL)
  else()
    set(file_type VFT_APP)
  endif()
  get_target_property(description ${target} TAVRINE_DESCRIPTION)
  if(NOT description)
    set(description "${TAVRINE_PRODUCT_NAME} ${internal_name}")
  endif()
  set(rc ${CMAKE_BINARY_DIR}/version/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${rc} @ONLY)
  target_sources(${target} PRIVATE ${rc})
endfunction()

function(tavrine_finish_windows_binaries)
  _tavrine_collect_binaries(${PROJECT_SOURCE_DIR} targets)
  foreach(target IN LISTS targets)
    _tavrine_add_version_resource(${target})
  endforeach()
endfunction()
