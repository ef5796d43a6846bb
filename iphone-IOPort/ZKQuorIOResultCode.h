#pragma once

#include <cstdint>

namespace quordalvane {

/// What became of a checked block's beginning. The port itself produces success, failed and paper
/// present; the other two belong to the layers above it.
enum ZKQuorIOResultCode : std::int64_t {
  ZKQuorIOResultCodeSuccess = 0,
  ZKQuorIOResultCodeFailedError = -1,
  ZKQuorIOResultCodeInProcessError = -2,
  ZKQuorIOResultCodePaperPresentError = -3,
  ZKQuorIOResultCodeInUseError = -100,
};

}  // namespace quordalvane
