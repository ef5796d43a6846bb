# Writes a C++ source that contains the files of the web page. To be run as a script:
#   cmake -D OUTPUT=FILE -D FILES=FILE;FILE… -P EmbedFiles.cmake
set(arrays "")
set(rows "")
set(number 0)
foreach(file ${FILES})
  cmake_path(GET file FILENAME name)
  file(READ ${file} digits HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${digits}")
  string(APPEND arrays "constexpr unsigned char file${number}[] = {${bytes}0};\n")
  string(APPEND rows
         "    {\"${name}\", {reinterpret_cast<const char*>(file${number}), sizeof file${number} - 1}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "#include \"tools/quorport/web/PageFiles.h\"

namespace quordalvane::tool {
namespace {

${arrays}
}  // namespace

std::span<const PageFile> pageFiles() {
  static const PageFile files[] = {
${rows}  };
  return files;
}

}  // namespace quordalvane::tool
")
