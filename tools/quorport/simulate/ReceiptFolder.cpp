#include "tools/quorport/simulate/ReceiptFolder.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <utility>

#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Receipt.h"

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
    throw CommandFailure(ExitCode::Usage, "--receipts: the folder " + inQuotes(folder_) +
                                              " cannot be used: " + error.code().message());
  }
}

std::string ReceiptFolder::nextName() {
  std::string digits = std::to_string(++last_);
  digits.insert(0, leastDigits - std::min(leastDigits, digits.size()), '0');
  return folder_ + "/" + std::string(prefix) + digits;
}

ReceiptFolder::Written ReceiptFolder::add(const std::vector<simulator::Paper>& papers) {
  Written written;
  for (const simulator::Paper& paper : papers) {
    const std::string name = nextName();
    for (const char* const ending : {".txt", ".png"}) {
      written.error = writePaper(paper, name + ending, writeWholeFile);
      if (!written.error.empty()) {
        return written;
      }
      written.files.push_back(name + ending);
    }
  }
  return written;
}

std::string ReceiptFolder::addBeside(const std::vector<std::string>& files,
                                     const std::string& text) {
  for (const std::filesystem::path file : files) {
    if (file.extension() != ".txt") {
      continue;
    }
    const std::string beside = std::filesystem::path(file).replace_extension(".json").string();
    if (std::string error = writeWholeFile(text, beside); !error.empty()) {
      return error;
    }
  }
  return "";
}

}  // namespace quordalvane::tool
