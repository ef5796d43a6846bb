#pragma once

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Interruption.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {

/// Presents the devices of the options, in their order. Throws a Failure with ExitCode::Usage for a
/// SPEC that is none.
std::shared_ptr<InterruptiblePlatform> presentDevices(const Options& options,
                                                      std::shared_ptr<Interruption> interruption);

/// The accessory that a port with these options would choose among those of the platform; null if
/// none. Connects nothing, and leaves nothing in the diagnostic records.
std::shared_ptr<EAAccessory> chosenAccessory(const InterruptiblePlatform& platform,
                                             const Options& options);

/// The failure of a port whose name chooses none of the platform's accessories.
Failure noneMatches(const InterruptiblePlatform& platform, const Options& options);

/// The port of a command, open as long as this lives.
class Printer {
 public:
  /// Opens the port. Throws a Failure with ExitCode::NoAccessory that tells why there is none. No
  /// other port of the command may be open.
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

  /// Runs `operation` on the port and returns what it returns. What the port raises becomes the
  /// Failure of `failure`; its own word for a write that failed is not for people.
  template <typename Operation>
  auto exchange(Operation operation) {
    try {
      return operation(*port_);
    } catch (const Failure&) {
      throw;
    } catch (const PortException&) {
      throw failure("the link did not take the request");
    } catch (const std::exception& error) {
      throw failure(error.what());
    }
  }

  /// Whether the link is gone. Bytes that came before the loss and are unread do not hide it.
  bool isLinkLost();

  /// A failed exchange: a lost link where the link is gone, else what `otherwise` says.
  Failure failure(const std::string& otherwise);

 private:
  void close();

  std::shared_ptr<Interruption> interruption_;
  std::shared_ptr<InterruptiblePlatform> platform_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

}  // namespace quordalvane::tool
