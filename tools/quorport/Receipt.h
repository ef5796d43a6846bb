#pragma once

#include <memory>
#include <string>

#include "platform/EAAccessory.h"
#include "simulator/Paper.h"

namespace quordalvane::virtuals {
class VirtualAccessory;
}

namespace quordalvane::tool {

/// Writes the bytes to a file, whatever kind of file it is. Returns "" on success, otherwise the
/// reason; a part of the bytes may then be in the file.
std::string writeFile(const std::string& bytes, const std::string& file);

/// Writes the bytes to a new file, which gets the name `file` only when it is complete; before that
/// its name is like `.receipt-0001.png.part`. Returns "" on success. On a failure, returns the
/// reason and leaves no file.
std::string writeWholeFile(const std::string& bytes, const std::string& file);

/// Writes the paper to a file by `write`, one of the functions above: as a picture if the name ends
/// in .png, otherwise as text. Returns "" on success, otherwise the reason.
std::string writePaper(const simulator::Paper& paper, const std::string& file,
                       decltype(writeFile)& write);

/// The receipt file of a job on the built-in virtual printer.
class Receipt {
 public:
  /// `accessory` must not be null. Throws a CommandFailure with ExitCode::Usage if `accessory` is
  /// not the virtual printer, or if the file cannot be written.
  Receipt(std::string file, const std::shared_ptr<EAAccessory>& accessory);

  /// Writes everything that the printer has printed so far. Returns "" on success, otherwise the
  /// reason.
  std::string write();

 private:
  const std::string file_;
  const std::shared_ptr<virtuals::VirtualAccessory> accessory_;
};

}  // namespace quordalvane::tool
