#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Thrown if the journal cannot be opened, read, written or locked. The text of `what()` is for
/// people; this text names the file and the reason.
class QUOR_EXPORT JournalError : public std::runtime_error {
 public:
  JournalError(const std::filesystem::path& file, const std::string& why)
      : std::runtime_error("the journal " + file.string() + ": " + why) {}
};

}  // namespace quordalvane
