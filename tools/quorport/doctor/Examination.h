#pragma once

#include <optional>
#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/enum.h"
#include "platform/ProofKind.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/doctor/Finding.h"

namespace quordalvane::tool {

/// The result of looking at one device.
struct Diagnosis {
  std::string device;  ///< its text
  Findings findings;   ///< empty if the printer is well
  std::vector<std::string> remarks;
  std::optional<QuorPrinterStatus_2> status;   ///< null if none was obtained
  std::optional<ProofKind> proof;              ///< null if it was not asked
  ZKEmulation emulation = ZKEmulationUnknown;  ///< in which it answered
};

/// Examines the device whose text is `device`, for any port name. Nothing is printed, and the
/// printer keeps the data that it holds; a serial printer that does not answer is asked at every
/// other speed as well, which may make it print stray characters. Throws a CommandFailure with
/// ExitCode::Usage for a text that is no device. `line` shows the progress.
Diagnosis examine(const std::string& device, const Options& options,
                  const Surroundings& surroundings, LiveLine& line);

}  // namespace quordalvane::tool
