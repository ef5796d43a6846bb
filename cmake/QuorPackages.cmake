# The outside libraries, all of them from Debian's packages. The port, its parsers and its logger use none.
find_package(PkgConfig REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)
find_library(ZINT_LIBRARY zint REQUIRED)
