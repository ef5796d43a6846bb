#include "backends/posix/SystemFiles.h"

#include <algorithm>
#include <fstream>
#include <system_error>

namespace quordalvane::posix {

std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> entries;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    entries.push_back(entry->path());
  }
  return entries;
}

std::string contentOf(const std::filesystem::path& file) {
  constexpr std::size_t longest = 4096;
  std::ifstream stream(file, std::ios::binary);
  std::string text(longest, '\0');
  stream.read(text.data(), longest);
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(stream.gcount(), 0)));
  while (!text.empty() && (text.back() == '\n' || text.back() == '\0')) {
    text.pop_back();
  }
  return text;
}

}  // namespace quordalvane::posix
