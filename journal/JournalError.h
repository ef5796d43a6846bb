#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace quordalvane {

/// The journal could not be opened, read, written or locked. `what()` is a text for people that
/// names the file and says why.
class JournalError : public std::runtime_error {
 public:
  JournalError(const std::filesystem::path& file, const std::string& why)
      : std::runtime_error("the journal " + file.string() + ": " + why) {}
};

}  // namespace quordalvane
