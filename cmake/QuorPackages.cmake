# Finds the outside libraries. Each of them is a Debian package. The port, its parsers and its
# logger use none of them.
find_package(PkgConfig REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)
# The drawing library chooses fonts by fontconfig, which is installed with it.
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
find_library(ZINT_LIBRARY zint REQUIRED)
find_package(ZLIB REQUIRED)

# The journal of jobs is built if its libraries are installed.
pkg_check_modules(SQLITE IMPORTED_TARGET sqlite3)
pkg_check_modules(NETTLE IMPORTED_TARGET nettle)
if(SQLITE_FOUND AND NETTLE_FOUND)
  set(QUOR_JOURNAL ON)
else()
  set(QUOR_JOURNAL OFF)
  quor_left_out("the journal of jobs (print --job, jobs)" "libsqlite3-dev and nettle-dev"
                tests/journal tests/unit/journal)
endif()

# If the drawing libraries are installed, the programs can print pictures, and text in any script.
pkg_check_modules(PANGOCAIRO IMPORTED_TARGET pangocairo)
pkg_check_modules(JPEG IMPORTED_TARGET libjpeg)
pkg_check_modules(PNG IMPORTED_TARGET libpng)
if(PANGOCAIRO_FOUND AND JPEG_FOUND AND PNG_FOUND)
  set(QUOR_RENDER ON)
else()
  set(QUOR_RENDER OFF)
  quor_left_out("text in any script and pictures (print --text, print --image)"
                "libpango1.0-dev, libjpeg-dev and libpng-dev" tests/render tests/unit/render)
endif()

# A small web server shows the virtual printer to browsers.
pkg_check_modules(MICROHTTPD IMPORTED_TARGET libmicrohttpd>=0.9.71)
if(MICROHTTPD_FOUND)
  set(QUOR_WEB ON)
else()
  set(QUOR_WEB OFF)
  quor_left_out("the virtual printer in a browser (simulate --web)" libmicrohttpd-dev
                tests/unit/http)
endif()

# D-Bus is needed for Bluetooth printers. The search for devices also finds network printers through
# D-Bus.
find_package(sdbus-c++ 2 QUIET)
if(NOT sdbus-c++_FOUND)
  find_package(sdbus-c++ 1 QUIET)
endif()
if(sdbus-c++_FOUND)
  set(QUOR_BLUETOOTH ON)
  # The interfaces of versions 1 and 2 differ; backends/bluez/BusLibrary.h hides the differences.
  target_compile_definitions(SDBusCpp::sdbus-c++ INTERFACE QUOR_SDBUS_VERSION=${sdbus-c++_VERSION_MAJOR})
else()
  set(QUOR_BLUETOOTH OFF)
  quor_left_out("Bluetooth printers (bluetooth:)" libsdbus-c++-dev tests/bluez)
endif()

# The back end for the print system requires the journal.
find_package(Cups)
if(CUPS_FOUND AND QUOR_JOURNAL)
  set(QUOR_CUPS ON)
else()
  set(QUOR_CUPS OFF)
  quor_left_out("the print system's back end (quor)" "libcups2-dev and the journal"
                tests/cups tests/unit/cups)
endif()

# The printer application requires the journal, the drawing libraries and its framework.
pkg_check_modules(PAPPL IMPORTED_TARGET pappl>=1.3)
if(PAPPL_FOUND AND QUOR_JOURNAL AND QUOR_RENDER)
  set(QUOR_PRINTER_APP ON)
else()
  set(QUOR_PRINTER_APP OFF)
  quor_left_out("the printer application (quorport-printer-app)" "libpappl-dev, the journal and drawing"
                tests/printer-app)
endif()
