#pragma once

#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::tool {

/// A folder for receipts: receipt-0001.txt and receipt-0001.png, and so on. A file gets such a name
/// only when it is complete, so that another program can read any file that it sees.
class ReceiptFolder {
 public:
  /// Creates the folder if it does not exist. New receipts get higher numbers than all receipts
  /// that are in the folder. Throws a CommandFailure with ExitCode::Usage if the folder cannot be
  /// created or read.
  explicit ReceiptFolder(std::string folder);

  struct Written {
    std::vector<std::string> files;
    std::string error;  ///< why a file could not be written; empty on success
  };

  /// Writes each paper under the next number, as text and as a picture.
  Written add(const std::vector<simulator::Paper>& papers);

  /// Writes `text` to a .json file beside each receipt in `files`. Returns "" on success, otherwise
  /// the reason.
  static std::string addBeside(const std::vector<std::string>& files, const std::string& text);

 private:
  std::string nextName();

  const std::string folder_;
  unsigned long last_ = 0;
};

}  // namespace quordalvane::tool
