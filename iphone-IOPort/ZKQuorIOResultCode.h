#pragma once

#include <cstdint>

namespace quordalvane {

/// How the beginning of a checked block ended. The port itself produces success, failed and paper
/// present; the other two belong to the layers above it.
enum ZKQuorIOResultCode : std::int64_t {
  ZKQuorIOResultCodeSuccess = 0,             ///< the block has begun
  ZKQuorIOResultCodeFailedError = -1,        ///< an exchange failed, or the printer is off line
  ZKQuorIOResultCodeInProcessError = -2,     ///< for a layer above: not finished yet
  ZKQuorIOResultCodePaperPresentError = -3,  ///< the paper in the exit was not taken in time
  ZKQuorIOResultCodeInUseError = -100,       ///< for a layer above: another one uses the printer
};

}  // namespace quordalvane
