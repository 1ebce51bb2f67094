# The layers of src/ as libraries. Each layer is one static library that links
# (PUBLIC) only the layer directly below it, so it sees that layer and, through
# it, every lower one, never a higher one.
#
# The compiler enforces the direction: there is no include root at src/. Each
# layer has its own root, <build>/layer_include/<layer>, holding one entry,
# <layer>, a link to src/<layer>; a target gets the roots of its own layer and
# of the layers it links. An include of a higher layer ("dialogs/..." from
# operations) therefore finds no file and the build stops there.
#
# The links are made at configure time: symbolic links where the host has
# them, directory junctions on Windows hosts (no administrator rights needed).

set(TAVRINE_LAYER_INCLUDE_DIR ${CMAKE_BINARY_DIR}/layer_include)

# Gives `target` the include root of src/<layer> (PUBLIC, or INTERFACE for a
# library without sources).
function(tavrine_layer_include_root target layer scope)
  set(root ${TAVRINE_LAYER_INCLUDE_DIR}/${layer})
  set(link ${root}/${layer})
  set(folder ${PROJECT_SOURCE_DIR}/src/${layer})
  file(MAKE_DIRECTORY ${root})
  if(CMAKE_HOST_WIN32)
    if(NOT EXISTS ${link})
      file(TO_NATIVE_PATH ${link} native_link)
      file(TO_NATIVE_PATH ${folder} native_folder)
      execute_process(COMMAND cmd /c mklink /J ${native_link} ${native_folder}
                      OUTPUT_QUIET RESULT_VARIABLE failed)
      if(failed)
        message(FATAL_ERROR "cannot make the junction ${link} -> ${folder}")
      endif()
    endif()
  else()
    file(CREATE_LINK ${folder} ${link} SYMBOLIC)
  endif()
  target_include_directories(${target} ${scope} ${root})
endfunction()

# tavrine_add_layer(<layer> [BELOW <target>...] [SOURCES <file>...])
# Makes tavrine_<layer> from the sources of src/<layer>, linking the library of
# the layer below. A layer without sources (yet) is an INTERFACE library with
# the same include root and link.
function(tavrine_add_layer layer)
  cmake_parse_arguments(arg "" "" "BELOW;SOURCES" ${ARGN})
  set(target tavrine_${layer})
  if(arg_SOURCES)
    add_library(${target} STATIC ${arg_SOURCES})
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  tavrine_layer_include_root(${target} ${layer} ${scope})
  if(arg_BELOW)
    target_link_libraries(${target} ${scope} ${arg_BELOW})
  endif()
endfunction()
