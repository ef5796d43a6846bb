#pragma once

#include <memory>
#include <span>
#include <utility>
#include <vector>

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

  /// What each read brought, in order; a read that brought nothing is an empty one.
  const std::vector<ByteBuffer>& reads() const { return reads_; }

  /// All of it in one.
  ByteBuffer bytes() const {
    ByteBuffer all;
    for (const auto& read : reads_) {
      all.insert(all.end(), read.begin(), read.end());
    }
    return all;
  }

 private:
  void bytesWritten(std::span<const std::uint8_t> /*bytes*/) override {}
  void bytesRead(std::span<const std::uint8_t> bytes) override {
    reads_.emplace_back(bytes.begin(), bytes.end());
  }

  const std::shared_ptr<ExternalAccessoryPort> port_;
  std::vector<ByteBuffer> reads_;
};

}  // namespace quordalvane::tool
