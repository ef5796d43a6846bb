#pragma once

#include "iphone-IOPort/ExternalAccessoryPort.h"

namespace quordalvane::tool {

/// Hears what the printer says as long as it lives: some answers of a port do not tell whether the
/// printer's own answer was whole.
class Listener final : private TransferObserver {
 public:
  explicit Listener(std::shared_ptr<ExternalAccessoryPort> port) : port_(std::move(port)) {
    port_->setTransferObserver(this);
  }
  ~Listener() override { port_->setTransferObserver(nullptr); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  const ByteBuffer& heard() const { return heard_; }

 private:
  void bytesWritten(std::size_t /*count*/) override {}
  void bytesRead(std::span<const std::uint8_t> bytes) override {
    heard_.insert(heard_.end(), bytes.begin(), bytes.end());
  }

  const std::shared_ptr<ExternalAccessoryPort> port_;
  ByteBuffer heard_;
};

}  // namespace quordalvane::tool
