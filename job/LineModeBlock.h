#pragma once

#include "job/CheckedBlock.h"

namespace quordalvane {

/// The checked block of line mode: the counter in the printer's status shows the end of the job.
class LineModeBlock final : public CheckedBlock {
 public:
  LineModeBlock(PortLink& link, PrintResult& result) : CheckedBlock(link, result) {}

 private:
  ByteView request() const override;
  MaybeSetback prepare() override { return std::nullopt; }
  MaybeSetback judgeReadiness() override;
  MaybeSetback markBeginning() override;
  bool endInTime() override;
  MaybeSetback judgeProof() const override;

  void takeStatus();
  bool awaitCount();
  bool confirm();

  bool isFirstMarkCounted_ = false;
  bool isConfirmed_ = true;  // by a second status
};

}  // namespace quordalvane
