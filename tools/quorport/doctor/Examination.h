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

/// The result of examining one device.
struct Diagnosis {
  std::string device;  ///< the device's text
  Findings findings;   ///< the faults of the printer; may be empty
  std::vector<std::string> remarks;
  std::optional<QuorPrinterStatus_2> status;  ///< the last status; empty if there was none
  std::optional<ProofKind> proof;  ///< how the printer confirms jobs; empty if it was not asked
  ZKEmulation emulation = ZKEmulationUnknown;  ///< the emulation in which the printer answered
};

/// Examines the device and ignores the port name of `options`. Prints nothing, and the printer
/// keeps the data that it holds. But a serial printer that does not answer is asked again with
/// other settings; at a wrong speed it may print stray characters. Shows the progress on `line`.
/// Throws a CommandFailure with ExitCode::Usage for an invalid device text.
Diagnosis examine(const std::string& device, const Options& options,
                  const Surroundings& surroundings, LiveLine& line);

}  // namespace quordalvane::tool
