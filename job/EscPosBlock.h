#pragma once

#include <chrono>
#include <optional>

#include "job/CheckedBlock.h"
#include "job/EscPosAnswers.h"
#include "job/PortMemory.h"

namespace quordalvane {

/// The checked block in ESC/POS. One mark precedes the data and one follows it. When the printer
/// has processed everything before a mark, it reports its count of marks without being asked.
class EscPosBlock final : public CheckedBlock {
 public:
  EscPosBlock(PortLink& link, PrintResult& result);

  MaybeSetback end(ByteView data) override;
  void bytesRead(ByteView bytes) override;

 private:
  struct Reported {};

  ByteView request() const override;
  MaybeSetback prepare() override;
  MaybeSetback judgeReadiness() override;
  MaybeSetback markBeginning() override;
  bool endInTime() override;
  MaybeSetback judgeProof() const override;
  void stopIfReported();

  PortMemory& memory_;
  EscPosAnswers sinceMark_;  // the answers that have arrived since the last mark
  bool isFirstMarkReported_ = false;
  bool awaitsReport_ = false;
  std::optional<std::chrono::nanoseconds> reportedAt_;  // when the report arrived; null before
};

}  // namespace quordalvane
