#pragma once

#include <memory>
#include <string>

#include "platform/EAAccessory.h"
#include "simulator/Paper.h"

namespace quordalvane::virtuals {
class VirtualAccessory;
}

namespace quordalvane::tool {

/// Writes the paper to a file: as a picture if the name ends in .png, otherwise as text. Returns ""
/// on success, otherwise the reason.
std::string writePaper(const simulator::Paper& paper, const std::string& file);

/// Writes the bytes to a file. Returns "" on success, otherwise the reason.
std::string writeFile(const std::string& bytes, const std::string& file);

/// The receipt file of a job on the built-in virtual printer.
class Receipt {
 public:
  /// `accessory` must not be null. Throws a CommandFailure with ExitCode::Usage if it is not the
  /// virtual printer, or if the file cannot be written.
  Receipt(std::string file, const std::shared_ptr<EAAccessory>& accessory);

  /// Writes everything that the printer has printed so far. Returns "" on success, otherwise the
  /// reason.
  std::string write();

 private:
  const std::string file_;
  const std::shared_ptr<virtuals::VirtualAccessory> accessory_;
};

}  // namespace quordalvane::tool
