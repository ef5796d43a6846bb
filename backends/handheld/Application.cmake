# For an application on the handheld device. Include this file in the application's CMakeLists.txt and link
# `quor_for_handheld`, a static library of the port, the job, the C interface and the adapter to the device's
# frameworks. The application needs nothing else of this project's build.
get_filename_component(QUOR_ROOT ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
file(GLOB QUOR_HANDHELD_SOURCES CONFIGURE_DEPENDS
  ${QUOR_ROOT}/platform/*.cpp ${QUOR_ROOT}/parsers/*.cpp ${QUOR_ROOT}/text/*.cpp ${QUOR_ROOT}/logging/*.cpp
  ${QUOR_ROOT}/iphone-IOPort/*.cpp ${QUOR_ROOT}/job/*.cpp ${QUOR_ROOT}/c-interface/*.cpp
  ${QUOR_ROOT}/backends/handheld/*.cpp ${QUOR_ROOT}/backends/handheld/*.mm)
# Devices.cpp uses the back ends of Linux, which do not exist on the handheld platform.
list(REMOVE_ITEM QUOR_HANDHELD_SOURCES ${QUOR_ROOT}/c-interface/Devices.cpp)

add_library(quor_for_handheld STATIC ${QUOR_HANDHELD_SOURCES})
target_compile_features(quor_for_handheld PUBLIC cxx_std_20)
target_include_directories(quor_for_handheld PUBLIC ${QUOR_ROOT}/include ${QUOR_ROOT})
target_compile_definitions(quor_for_handheld PRIVATE QUOR_VERSION="0.1.0")
target_compile_options(quor_for_handheld PRIVATE -fvisibility=hidden -ffile-prefix-map=${QUOR_ROOT}/=)
if(CMAKE_SYSTEM_NAME STREQUAL "iOS")
  target_link_libraries(quor_for_handheld PUBLIC
    "-framework Foundation" "-framework ExternalAccessory" "-framework UIKit")
endif()
