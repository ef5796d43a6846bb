#pragma once

#include <memory>
#include <span>

#include "c-interface/Failures.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"

namespace quordalvane::c {

/// Lets functions of the caller's see the bytes of a port. They cannot throw: if one returns other
/// than 0, this class stops the operation.
class FunctionObserver : public TransferObserver {
 public:
  FunctionObserver(QuorBytesWritten written, QuorBytesRead read, void* context)
      : written_(written), read_(read), context_(context) {}

  void bytesWritten(std::span<const std::uint8_t> bytes) override {
    if (written_ != nullptr) {
      goOnIf(written_(context_, bytes.size()) == 0);
    }
  }
  void bytesRead(std::span<const std::uint8_t> bytes) override {
    if (read_ != nullptr) {
      goOnIf(read_(context_, bytes.data(), bytes.size()) == 0);
    }
  }

 private:
  static void goOnIf(bool wanted) {
    if (!wanted) {
      throw CallFailure(QUOR_STOPPED, "the transfer observer stopped the operation");
    }
  }

  const QuorBytesWritten written_;
  const QuorBytesRead read_;
  void* const context_;
};

}  // namespace quordalvane::c

struct QuorPort {
  const std::shared_ptr<quordalvane::ExternalAccessoryPort> port;
  std::unique_ptr<quordalvane::c::FunctionObserver> observer;
};

namespace quordalvane::c {

inline ExternalAccessoryPort& given(QuorPort* handle) {
  return *given(handle, "the port").port;
}

}  // namespace quordalvane::c
