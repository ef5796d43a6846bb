#pragma once

#include <cstdint>
#include <span>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Sees the bytes that a port reads and writes. The port calls the observer on the thread that
/// reads or writes. If the observer throws, the port's operation ends with that exception. In this
/// way an observer can end a wait.
class QUOR_EXPORT TransferObserver {
 public:
  virtual ~TransferObserver() = default;

  /// Called after the link has taken `bytes`. `bytes` is empty if the link took no byte of a write.
  virtual void bytesWritten(std::span<const std::uint8_t> bytes) = 0;

  /// Called before a read returns `bytes`, which may be empty.
  virtual void bytesRead(std::span<const std::uint8_t> bytes) = 0;

  /// Called before a read fails: the link is lost, or its stream has failed.
  virtual void readFailed() {}
};

}  // namespace quordalvane
