# The outside libraries, all of them from Debian's packages. The port, its parsers and its logger use none.
find_package(PkgConfig REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)
# The drawing library chooses fonts through fontconfig, which comes with it.
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
find_library(ZINT_LIBRARY zint REQUIRED)
