# Finds GNUstep and a compiler for Objective-C++. If both are found, GNUSTEP_FOUND is true, and
# sources that link the target `gnustep` can be compiled. The compiler must be clang, because only
# clang compiles the dialect of the handheld device's compiler.
find_program(QUOR_OBJCXX_COMPILER NAMES clang++)
find_path(GNUSTEP_INCLUDE_DIR Foundation/Foundation.h PATH_SUFFIXES GNUstep)
find_library(GNUSTEP_LIBRARY gnustep-base)
# The runtime of Objective-C is in gcc's own folder, even if another compiler builds the sources.
execute_process(COMMAND gcc -print-file-name=include
                OUTPUT_VARIABLE QUOR_COMPILER_INCLUDE_DIR OUTPUT_STRIP_TRAILING_WHITESPACE)
find_path(OBJC_INCLUDE_DIR objc/objc.h PATHS ${QUOR_COMPILER_INCLUDE_DIR})
get_filename_component(QUOR_COMPILER_DIR ${QUOR_COMPILER_INCLUDE_DIR} DIRECTORY)
find_library(OBJC_LIBRARY NAMES objc PATHS ${QUOR_COMPILER_DIR})

set(GNUSTEP_FOUND FALSE)
if(NOT (QUOR_OBJCXX_COMPILER AND GNUSTEP_INCLUDE_DIR AND GNUSTEP_LIBRARY AND OBJC_INCLUDE_DIR
        AND OBJC_LIBRARY))
  return()
endif()
set(GNUSTEP_FOUND TRUE)
set(CMAKE_OBJCXX_COMPILER ${QUOR_OBJCXX_COMPILER})
set(CMAKE_OBJCXX_STANDARD 20)
# The compiler for Objective-C++ is not the compiler for C++. So its settings for precompiled
# headers, which `enable_language` writes, are replaced by those of the C++ compiler.
set(pch_extension ${CMAKE_PCH_EXTENSION})
set(pch_prologue ${CMAKE_PCH_PROLOGUE})
enable_language(OBJCXX)
set(CMAKE_PCH_EXTENSION ${pch_extension})
set(CMAKE_PCH_PROLOGUE ${pch_prologue})

add_library(gnustep INTERFACE)
target_include_directories(gnustep SYSTEM INTERFACE ${GNUSTEP_INCLUDE_DIR} ${OBJC_INCLUDE_DIR})
target_link_libraries(gnustep INTERFACE ${GNUSTEP_LIBRARY} ${OBJC_LIBRARY})
target_compile_definitions(gnustep INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:_NATIVE_OBJC_EXCEPTIONS GNUSTEP GNU_RUNTIME=1
  GNUSTEP_BASE_LIBRARY=1>)
target_compile_options(gnustep INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=gcc -fobjc-exceptions -fexceptions
  -fconstant-string-class=NSConstantString>)
