#pragma once

#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::tool {

/// A folder for receipts: receipt-0001.txt and receipt-0001.png, and so on.
class ReceiptFolder {
 public:
  /// Makes the folder if there is none. The numbers continue after the highest existing one. Throws
  /// a CommandFailure with ExitCode::Usage if the folder cannot be made or read.
  explicit ReceiptFolder(std::string folder);

  struct Written {
    std::vector<std::string> files;
    std::string error;  ///< the reason if one could not be written; empty otherwise
  };

  /// Writes each paper under the next number, as text and as a picture.
  Written add(const std::vector<simulator::Paper>& papers);

  /// Writes the text beside each receipt among `files`. Returns an empty text, or the reason if it
  /// could not.
  static std::string addBeside(const std::vector<std::string>& files, const std::string& text);

 private:
  std::string nextName();

  const std::string folder_;
  unsigned long last_ = 0;
};

}  // namespace quordalvane::tool
