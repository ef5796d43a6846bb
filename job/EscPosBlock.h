#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "job/BlockReport.h"
#include "job/CheckedBlock.h"

namespace quordalvane {

/// The checked block of ESC/POS: the printer reports the end of the job by itself.
class EscPosBlock final : public CheckedBlock {
 public:
  EscPosBlock(PortLink& link, PrintResult& result) : CheckedBlock(link, result) {}

  MaybeSetback end(ByteView data) override;
  void bytesRead(ByteView bytes) override;

 private:
  struct Reported {};

  ByteView request() const override;
  MaybeSetback judgeBeginning() override;
  MaybeSetback judgeReadiness() override;
  bool endOnPort() override;
  bool isProven() const override;
  std::string whyUnproven() const override;
  void stopIfReported();

  BlockReport report_;
  bool awaitsReport_ = false;
  std::optional<std::chrono::nanoseconds> reportedAt_;  // when the report was first seen
};

}  // namespace quordalvane
