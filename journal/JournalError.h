#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The journal could not be opened, read, written or locked. `what()` is a text for people that
/// names the file and says why.
class QUOR_EXPORT JournalError : public std::runtime_error {
 public:
  JournalError(const std::filesystem::path& file, const std::string& why)
      : std::runtime_error("the journal " + file.string() + ": " + why) {}
};

}  // namespace quordalvane
