#pragma once

#include "job/CheckedBlock.h"

namespace quordalvane {

/// The checked block in line mode: the counter in the printer's status shows that the end of the
/// job was reached.
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
  bool isConfirmed_ = true;  // false if a second status did not agree with the first
};

}  // namespace quordalvane
