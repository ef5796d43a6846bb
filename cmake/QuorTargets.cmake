# Settings for every target of the project: the language level, the warnings, and the paths in log
# records, which are relative to the project wherever it was built. A warning is an error only for
# developers (QUOR_WARNINGS_ARE_ERRORS, in the preset "developer"): a newer compiler must not break
# a package or a first build.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

find_package(Threads REQUIRED)

add_library(quor_flags INTERFACE)
target_compile_options(quor_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion $<$<BOOL:${QUOR_WARNINGS_ARE_ERRORS}>:-Werror>
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual>
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)

# quor_library(NAME [SOURCES …] [LINKS …] [PRIVATE_LINKS …])
# Adds the static library of a folder, from all its sources except main.cpp. SOURCES is needed only
# if a folder has two libraries. Include paths begin at the project's root.
function(quor_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  if(NOT ARG_SOURCES)
    file(GLOB_RECURSE ARG_SOURCES CONFIGURE_DEPENDS *.cpp)
    list(FILTER ARG_SOURCES EXCLUDE REGEX "/main\\.cpp$")
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE quor_flags ${ARG_PRIVATE_LINKS})
endfunction()

# quor_interface(NAME [LINKS …]): adds the library of a folder that contains only headers.
function(quor_interface name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  add_library(${name} INTERFACE)
  target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} INTERFACE ${ARG_LINKS})
endfunction()

# quor_left_out(WHAT NEEDS FOLDER …): reports that a part is not built because the machine or the build lacks NEEDS, such
# as packages. The file left_out.txt lists the folders of tests that are therefore not built, so that they do not count
# as forgotten.
file(REMOVE ${PROJECT_BINARY_DIR}/left_out.txt)
function(quor_left_out what needs)
  message(STATUS "Left out: ${what}, which needs ${needs}")
  foreach(folder ${ARGN})
    file(APPEND ${PROJECT_BINARY_DIR}/left_out.txt "${folder}\n")
  endforeach()
endfunction()
