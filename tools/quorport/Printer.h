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

/// The devices of the options, in their order; the virtual printer if there are none.
std::vector<std::string> devicesOf(const Options& options);

/// Presents these devices, and says on standard error if it is the virtual printer because there
/// are none. Throws a CommandFailure with ExitCode::Usage for a SPEC that is no device.
std::shared_ptr<InterruptiblePlatform> presentDevices(const Options& options,
                                                      const Surroundings& surroundings);

/// The accessory that a port with these options would choose among those of the platform; null if
/// none. Connects nothing, and leaves nothing in the diagnostic records.
std::shared_ptr<EAAccessory> chosenAccessory(const InterruptiblePlatform& platform,
                                             const Options& options);

/// The failure of a port whose name chooses none of the platform's accessories.
CommandFailure noneMatches(const InterruptiblePlatform& platform, const Options& options);

/// The port of a command, open as long as this lives.
class Printer {
 public:
  /// Opens the port. Throws a CommandFailure with ExitCode::NoAccessory and the reason if that
  /// fails. No other port of the command may be open.
  Printer(const Options& options, const Surroundings& surroundings);

  /// The same on a platform that presents the devices already.
  Printer(const std::shared_ptr<InterruptiblePlatform>& platform, const Options& options,
          const Surroundings& surroundings);

  /// Closes the port. With the diagnostic records on it waits for the port's thread, which first
  /// ends its slice of 0.1 s, but no longer than two seconds.
  ~Printer();
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

  const std::shared_ptr<ExternalAccessoryPort>& port() { return port_; }

  /// Asks the printer by `question`, which is given an inquiry, and returns its answer. Throws the
  /// CommandFailure of a question without an answer.
  template <typename Asker>
  auto ask(Asker question) {
    PrinterInquiry inquiry(port_);
    try {
      return question(inquiry);
    } catch (const InquiryError& error) {
      throw failure(error);
    }
  }

  /// The CommandFailure of a question without an answer.
  CommandFailure failure(const InquiryError& error);

  /// For a text about a printer that gives no answer: "; its port reports: paper out". "" if the
  /// port reports nothing.
  std::string portReport() const;

 private:
  void close();
  bool isLinkLost();

  std::shared_ptr<Interruption> interruption_;
  std::shared_ptr<InterruptiblePlatform> platform_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

}  // namespace quordalvane::tool
