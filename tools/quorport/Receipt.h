#pragma once

#include <memory>
#include <string>

#include "platform/EAAccessory.h"
#include "simulator/Paper.h"

namespace quordalvane::virtuals {
class VirtualAccessory;
}

namespace quordalvane::tool {

/// Writes the paper to a file: as a picture if its name ends in .png, otherwise as text.
/// Returns an empty text, or the reason if it could not.
std::string writePaper(const simulator::Paper& paper, const std::string& file);

/// Writes the bytes to a file. Returns an empty text, or the reason if it could not.
std::string writeFile(const std::string& bytes, const std::string& file);

/// The receipt file of a job on the printer that is built in.
class Receipt {
 public:
  /// Throws a CommandFailure with ExitCode::Usage if the accessory, which must not be null, is
  /// another printer or the file cannot be written.
  Receipt(std::string file, const std::shared_ptr<EAAccessory>& accessory);

  /// Writes the output of the printer so far. Returns an empty text, or the reason if it could not.
  std::string write();

 private:
  const std::string file_;
  const std::shared_ptr<virtuals::VirtualAccessory> accessory_;
};

}  // namespace quordalvane::tool
