// Calls a fuzz target with the files of the given folders, for compilers without a fuzzing engine.
// The program fails if there is no file, so that a missing corpus is noticed.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "fuzz/FuzzTarget.h"

namespace {

void feed(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  // The input is in a heap block of the exact size, so that the address sanitizer notices every
  // read beyond its end.
  const auto exact = std::make_unique<std::uint8_t[]>(content.size());
  std::copy(content.begin(), content.end(), exact.get());
  std::cout << path.string()
            // The output is flushed, so that the name of the file is shown before a crash.
            << std::endl;
  LLVMFuzzerTestOneInput(exact.get(), content.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t fed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      feed(entry.path());
      ++fed;
    }
  }
  return fed > 0 ? 0 : 1;
}
