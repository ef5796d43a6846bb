#pragma once

#include <string>

#include "simulator/Paper.h"

namespace quordalvane::tool {

/// A folder where what was printed is kept: receipt-0001.txt and receipt-0001.png, and so on.
class ReceiptFolder {
 public:
  /// Makes the folder if there is none. The numbers go on from the highest that is there. Throws a
  /// Failure with ExitCode::Usage if the folder cannot be made or read.
  explicit ReceiptFolder(std::string folder);

  /// Writes the paper under the next number. Returns "" or why it could not.
  std::string add(const simulator::Paper& paper);

 private:
  const std::string folder_;
  unsigned long last_ = 0;
};

}  // namespace quordalvane::tool
