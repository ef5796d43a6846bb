#pragma once

#include "iphone-IOPort/ExternalAccessoryPort.h"

namespace quordalvane::tool {

/// Hears what the printer says as long as it lives: some answers of a port do not tell whether the
/// printer's own answer was whole.
class HeardBytes final : private TransferObserver {
 public:
  explicit HeardBytes(std::shared_ptr<ExternalAccessoryPort> port) : port_(std::move(port)) {
    port_->setTransferObserver(this);
  }
  ~HeardBytes() override { port_->setTransferObserver(nullptr); }
  HeardBytes(const HeardBytes&) = delete;
  HeardBytes& operator=(const HeardBytes&) = delete;

  const ByteBuffer& bytes() const { return bytes_; }

 private:
  void bytesWritten(std::size_t /*count*/) override {}
  void bytesRead(std::span<const std::uint8_t> bytes) override {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  }

  const std::shared_ptr<ExternalAccessoryPort> port_;
  ByteBuffer bytes_;
};

}  // namespace quordalvane::tool
