#pragma once

#include "job/EndSign.h"
#include "job/PortMemory.h"

namespace quordalvane {

/// Ends the job with a query that the printer answers after it has processed all data before the
/// query. The answer does not say to which job it belongs, so it counts only if the printer has
/// answered exactly as often as it was asked. Three queries are sent: before the data, at the end
/// of the job, and after the answer to the second query. So a single byte that looks like an answer
/// by chance cannot confirm the job.
class InOrderProof final : public EndSign {
 public:
  InOrderProof(PortLink& link, PrintResult& result);

  MaybeSetback end(ByteView data) override;

 private:
  MaybeSetback prepare() override;
  MaybeSetback makeQuestion(ByteView data, std::vector<std::uint8_t>& question) override;
  bool isSeen() const override { return answers().inOrderCount() == asked_; }
  bool isPossible() const override { return answers().inOrderCount() <= asked_; }

  PortMemory& memory_;
  std::uint64_t asked_ = 0;
  bool isSure_ = false;  // true if, before the data, every query was answered exactly once
};

/// The command that requests one status, which the printer sends after it has processed all earlier
/// bytes.
inline constexpr std::uint8_t inOrderRequest[] = {0x1d, 0x72, 0x01};

}  // namespace quordalvane
