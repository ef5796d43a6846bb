# The library for Bluetooth printers. It is separate, so that programs without it load no D-Bus
# library.
add_library(QuorBluez SHARED $<TARGET_OBJECTS:quor_bluez>
            # The port's library hides the functions of these sources, so this library has copies.
            $<FILTER:$<TARGET_OBJECTS:quor_posix>,INCLUDE,/Deadline|/Descriptor|/Link|/Linger>
            $<FILTER:$<TARGET_OBJECTS:quor_backend_common>,INCLUDE,/SpecText>
            $<FILTER:$<TARGET_OBJECTS:quor_text>,INCLUDE,/Quoted>)
add_library(QuorIOPort::QuorBluez ALIAS QuorBluez)
set_target_properties(QuorBluez PROPERTIES LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION}
                      SOVERSION ${PROJECT_VERSION_MAJOR}
                      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
target_link_options(QuorBluez PRIVATE LINKER:--no-undefined)
target_link_libraries(QuorBluez PUBLIC QuorIOPort PRIVATE SDBusCpp::sdbus-c++ Threads::Threads)

install(TARGETS QuorBluez EXPORT QuorIOPortTargets
        LIBRARY COMPONENT bluetooth NAMELINK_COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/backends/bluez/BluetoothScheme.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quordalvane/backends/bluez COMPONENT development)
