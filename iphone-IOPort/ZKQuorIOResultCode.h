#pragma once

#include <cstdint>

namespace quordalvane {

/// The result of beginning a checked block. The port itself returns only success, failed and paper
/// present. Programs above the port may use all five results.
enum ZKQuorIOResultCode : std::int64_t {
  ZKQuorIOResultCodeSuccess = 0,  ///< the block has begun
  ZKQuorIOResultCodeFailedError =
      -1,  ///< an exchange with the printer failed, or the printer is off line
  ZKQuorIOResultCodeInProcessError = -2,     ///< not finished yet; never returned by the port
  ZKQuorIOResultCodePaperPresentError = -3,  ///< nobody took the paper from the exit in time
  ZKQuorIOResultCodeInUseError =
      -100,  ///< another program uses the printer; never returned by the port
};

}  // namespace quordalvane
