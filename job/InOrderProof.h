#pragma once

#include "job/EndSign.h"
#include "job/PortMemory.h"

namespace quordalvane {

/// Ends the job with a question that the printer answers in its turn among the print data. The
/// answer carries nothing of the job: it counts only if the printer has answered exactly as often
/// as it was asked. So one question is answered before the data, and one more after the sign: a
/// single byte that only looks like an answer cannot pass for the sign.
class InOrderProof final : public EndSign {
 public:
  InOrderProof(PortLink& link, PrintResult& result);

  MaybeSetback end(ByteView data) override;

 private:
  MaybeSetback prepare() override;
  MaybeSetback makeQuestion(ByteView data, std::vector<std::uint8_t>& question) override;
  bool isSeen() const override { return isSure_ && answers().inOrderCount() == asked_; }
  bool isPossible() const override { return isSure_ && answers().inOrderCount() <= asked_; }

  PortMemory& memory_;
  std::uint64_t asked_ = 0;
  bool isSure_ = false;  // nothing else was owed when the data was sent
};

/// Asks for one in-order status.
inline constexpr std::uint8_t inOrderRequest[] = {0x1d, 0x72, 0x01};

}  // namespace quordalvane
