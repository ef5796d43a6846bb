#pragma once

#include <cstdint>
#include <span>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Sees the bytes that a port reads and writes. It is called on the thread that moves them. An
/// exception that it throws passes through the port's operation; so an observer can abandon a wait.
class QUOR_EXPORT TransferObserver {
 public:
  virtual ~TransferObserver() = default;

  /// Called after the link has taken `bytes`. They are empty if a write ended without a byte being
  /// taken.
  virtual void bytesWritten(std::span<const std::uint8_t> bytes) = 0;

  /// Called before a read returns `bytes`, which may be empty.
  virtual void bytesRead(std::span<const std::uint8_t> bytes) = 0;

  /// A `read:` is about to fail: the link is lost, or its stream has failed.
  virtual void readFailed() {}
};

}  // namespace quordalvane
