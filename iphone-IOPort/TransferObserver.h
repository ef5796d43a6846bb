#pragma once

#include <cstdint>
#include <span>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Sees the bytes that pass through a port, on the thread that moves them. Its exceptions pass
/// through the operation that moves them, which is how a wait is abandoned from outside.
class QUOR_EXPORT TransferObserver {
 public:
  virtual ~TransferObserver() = default;

  /// The link has taken these further bytes; they are empty if a `write:` could hand on none.
  virtual void bytesWritten(std::span<const std::uint8_t> bytes) = 0;

  /// A `read:` is about to return `bytes`, which may be empty.
  virtual void bytesRead(std::span<const std::uint8_t> bytes) = 0;
};

}  // namespace quordalvane
