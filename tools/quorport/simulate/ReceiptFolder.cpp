#include "tools/quorport/simulate/ReceiptFolder.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <utility>

#include "tools/quorport/Receipt.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

constexpr std::string_view prefix = "receipt-";
constexpr std::size_t leastDigits = 4;

unsigned long numberIn(std::string_view name) {
  unsigned long number = 0;
  if (name.starts_with(prefix)) {
    std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number);
  }
  return number;
}

}  // namespace

ReceiptFolder::ReceiptFolder(std::string folder) : folder_(std::move(folder)) {
  try {
    std::filesystem::create_directory(folder_);
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      last_ = std::max(last_, numberIn(entry.path().filename().string()));
    }
  } catch (const std::filesystem::filesystem_error& error) {
    throw Failure(ExitCode::Usage, "--receipts takes a folder, and " + inQuotes(folder_) +
                                       " cannot be one: " + error.code().message());
  }
}

std::string ReceiptFolder::add(const simulator::Paper& paper) {
  std::string digits = std::to_string(++last_);
  digits.insert(0, leastDigits - std::min(leastDigits, digits.size()), '0');
  const std::string file = folder_ + "/" + std::string(prefix) + digits;
  const std::string why = writePaper(paper, file + ".txt");
  return why.empty() ? writePaper(paper, file + ".png") : why;
}

}  // namespace quordalvane::tool
