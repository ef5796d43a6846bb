# Defines libQuorIOPort, the library that programs link, as a shared and as a static library. Also installs the library,
# its headers and the command quorport. The library contains the targets in the list `rooms`. Headers are installed
# below include/quordalvane/, in the same folders as in the tree. include/quordalvane/ is also in the include path, so
# that programs write the same includes as the project's own sources.
include(CMakePackageConfigHelpers)
include(PublicHeaders)

set(rooms quor_parsers quor_text quor_logging quor_platform quor_port quor_backend_common quor_virtual
          quor_posix quor_backends quor_job quor_c_interface)
list(TRANSFORM rooms REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
# The library leaves out the sources that draw pictures of the paper, so that programs do not need the drawing library.
# The command quorport contains these sources.
list(APPEND objects $<FILTER:$<TARGET_OBJECTS:quor_simulator>,EXCLUDE,/drawing/>)

# QUOR_EXPORT decides which names are exported: the sources are compiled with all other names hidden. The map adds the
# library's version to the exported names. It also hides names that other headers make visible, such as instances of
# standard templates.
set(export_map ${PROJECT_BINARY_DIR}/exports.map)
file(CONFIGURE OUTPUT ${export_map} @ONLY CONTENT [[
QUORIOPORT_@PROJECT_VERSION_MAJOR@ {
global:
  quor_*;
  extern "C++" {
    quordalvane::*;
    typeinfo?for?quordalvane::*;
    typeinfo?name?for?quordalvane::*;
    vtable?for?quordalvane::*;
  };
local:
  *;
};
]])

# quor_product(NAME TYPE): adds the library of this type.
function(quor_product name type)
  add_library(${name} ${type} ${objects})
  add_library(QuorIOPort::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME QuorIOPort LINKER_LANGUAGE CXX
                        ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
                        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
  target_compile_features(${name} INTERFACE cxx_std_20)
  target_include_directories(${name} INTERFACE
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quordalvane>)
endfunction()

quor_product(QuorIOPort SHARED)
set_target_properties(QuorIOPort PROPERTIES VERSION ${PROJECT_VERSION}
                      SOVERSION ${PROJECT_VERSION_MAJOR}
                      LINK_DEPENDS ${export_map})
target_link_options(QuorIOPort PRIVATE LINKER:--version-script=${export_map} LINKER:--no-undefined)
target_link_libraries(QuorIOPort PRIVATE ${ZINT_LIBRARY} Threads::Threads)

# The barcode library zint is given by its name and not by its path, so that only programs that link the static library
# need the package of zint.
set(QUOR_STATIC_LINKS zint pthread)
quor_product(QuorIOPortStatic STATIC)
target_link_libraries(QuorIOPortStatic INTERFACE ${QUOR_STATIC_LINKS})

install(TARGETS QuorIOPort EXPORT QuorIOPortTargets
        LIBRARY COMPONENT library NAMELINK_COMPONENT development)
install(TARGETS QuorIOPortStatic EXPORT QuorIOPortTargets ARCHIVE COMPONENT development)
install(TARGETS quorport RUNTIME COMPONENT tool)
install(FILES docs/quorport.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES completion/quorport.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME quorport COMPONENT tool)
install(FILES completion/_quorport DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
        COMPONENT tool)

foreach(header ${QUOR_PUBLIC_HEADERS})
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${header}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quordalvane/${folder} COMPONENT development)
endforeach()
install(FILES ${QUOR_PUBLIC_C_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quordalvane
        COMPONENT development)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QuorIOPort)
install(EXPORT QuorIOPortTargets NAMESPACE QuorIOPort:: DESTINATION ${package_folder}
        COMPONENT development)
configure_package_config_file(cmake/QuorIOPortConfig.cmake.in QuorIOPortConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
# Before 1.0, any minor version may change the interface that programs use.
write_basic_package_version_file(QuorIOPortConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuorIOPortConfig.cmake
              ${PROJECT_BINARY_DIR}/QuorIOPortConfigVersion.cmake
        DESTINATION ${package_folder} COMPONENT development)

# The pkg-config file is written at installation, because the prefix is not known before.
list(TRANSFORM QUOR_STATIC_LINKS PREPEND "-l" OUTPUT_VARIABLE static_flags)
list(JOIN static_flags " " static_flags)
install(CODE "
  set(LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
  set(INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
  set(VERSION \"${PROJECT_VERSION}\")
  set(STATIC_FLAGS \"${static_flags}\")
  configure_file(\"${PROJECT_SOURCE_DIR}/cmake/QuorIOPort.pc.in\"
                 \"${PROJECT_BINARY_DIR}/QuorIOPort.pc\" @ONLY)" COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/QuorIOPort.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
