#include "tools/quorport/PrinterTurn.h"

#include <chrono>
#include <system_error>

#include "backends/DeviceIdentity.h"
#include "job/Words.h"
#include "locks/DeviceLock.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

std::optional<ByteLock> takePrinter(const std::string& device, const Options& options,
                                    const Surroundings& surroundings) {
  const std::string identity = deviceIdentity(parseDeviceSpec(device));
  if (identity.empty()) {
    return std::nullopt;
  }
  std::optional<ByteLock> lock;
  try {
    lock = takeDevice(identity, std::chrono::milliseconds(options.timeout), [&] {
      complain("another job is on this printer: waiting", surroundings.streams);
    });
  } catch (const std::system_error& error) {
    complain("the printer cannot be reserved for this job: " + printable(error.what()),
             surroundings.streams);
    return std::nullopt;
  }
  if (!lock) {
    throw CommandFailure(ExitCode::NotReady,
                         "another job is on this printer, and has not ended within " +
                             inSeconds(options.timeout) + "; nothing was sent");
  }
  return lock;
}

}  // namespace quordalvane::tool
