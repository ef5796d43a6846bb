# The library for the journal. It is separate, so that programs without it load no database.
add_library(QuorJournal SHARED $<TARGET_OBJECTS:quor_journal> $<TARGET_OBJECTS:quor_locks>
            $<TARGET_OBJECTS:quor_journal_c_interface>
            # The port's library hides the functions of these sources, so this library has copies.
            $<FILTER:$<TARGET_OBJECTS:quor_job>,INCLUDE,/Advice|/Words>
            $<FILTER:$<TARGET_OBJECTS:quor_c_interface>,INCLUDE,/Buffers>)
add_library(QuorIOPort::QuorJournal ALIAS QuorJournal)
set_target_properties(QuorJournal PROPERTIES LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION}
                      SOVERSION ${PROJECT_VERSION_MAJOR}
                      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
                      LINK_DEPENDS ${export_map})
target_link_options(QuorJournal PRIVATE LINKER:--version-script=${export_map} LINKER:--no-undefined)
target_link_libraries(QuorJournal PUBLIC QuorIOPort PRIVATE PkgConfig::SQLITE PkgConfig::NETTLE)

install(TARGETS QuorJournal EXPORT QuorIOPortTargets
        LIBRARY COMPONENT journal NAMELINK_COMPONENT development)
foreach(header journal/Journal.h journal/JournalError.h journal/NamedJob.h
               locks/ByteLock.h locks/DeviceLock.h)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${header}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quordalvane/${folder} COMPONENT development)
endforeach()
install(FILES include/quordalvane/QuorJournalC.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quordalvane
        COMPONENT development)
