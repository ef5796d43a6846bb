#pragma once

#include <memory>
#include <string>
#include <vector>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrinterInquiry.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Interruption.h"
#include "tools/quorport/Options.h"

namespace quordalvane::tool {

/// Returns the devices that the options name, in order; the virtual printer if they name none.
std::vector<std::string> devicesOf(const Options& options);

/// Returns a new platform with one accessory for each device that `devicesOf` returns. If the
/// options name no device, writes to standard error that the virtual printer is used. Throws a
/// CommandFailure with ExitCode::Usage for an invalid device text.
std::shared_ptr<InterruptiblePlatform> presentDevices(const Options& options,
                                                      const Surroundings& surroundings);

/// Returns the accessory that a port with these options would choose; null if it would choose none.
/// Opens no connection, and writes no diagnostic records.
std::shared_ptr<EAAccessory> chosenAccessory(const InterruptiblePlatform& platform,
                                             const Options& options);

/// Returns the failure that a command reports if the port name chooses none of the platform's
/// accessories.
CommandFailure noneMatches(const InterruptiblePlatform& platform, const Options& options);

/// The port that a command uses to reach its printer. The port is open while this object exists.
class Printer {
 public:
  /// Opens the port on the platform that `presentDevices` returns. Throws the errors of
  /// `presentDevices`. If the port cannot be opened, throws a CommandFailure with the reason: with
  /// ExitCode::NotReady if the device is busy, otherwise with ExitCode::NoAccessory. The command
  /// must have no other open port.
  Printer(const Options& options, const Surroundings& surroundings);

  /// Opens the port on `platform`, to which the accessories must already be attached. Throws as the
  /// other constructor does if the port cannot be opened.
  Printer(const std::shared_ptr<InterruptiblePlatform>& platform, const Options& options,
          const Surroundings& surroundings);

  /// Closes the port. If diagnostic records are written, waits until the port's thread has written
  /// its last record: usually 0.1 s, at most two seconds.
  ~Printer();
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

  const std::shared_ptr<ExternalAccessoryPort>& port() { return port_; }

  /// Calls `question` with an inquiry and returns the printer's answer. If the printer gives no
  /// answer, throws the CommandFailure that `failure` returns.
  template <typename Asker>
  auto ask(Asker question) {
    PrinterInquiry inquiry(port_);
    try {
      return question(inquiry);
    } catch (const InquiryError& error) {
      throw failure(error);
    }
  }

  /// Returns the failure that a command reports if a question got no answer.
  CommandFailure failure(const InquiryError& error);

  /// Returns the faults in the port's last status, as a text to append to an error message: "; its
  /// port reports: paper out". Returns "" if that status shows no fault.
  std::string portReport() const;

 private:
  void close();
  bool isLinkLost();

  std::shared_ptr<Interruption> interruption_;
  std::shared_ptr<InterruptiblePlatform> platform_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

}  // namespace quordalvane::tool
