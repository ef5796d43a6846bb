#pragma once

#include <string>

#include "job/CheckedBlock.h"

namespace quordalvane {

/// The checked block of line mode: the counter in the printer's status shows the end of the job.
class LineModeBlock final : public CheckedBlock {
 public:
  LineModeBlock(PortLink& link, PrintResult& result) : CheckedBlock(link, result) {}

 private:
  ByteView request() const override;
  MaybeSetback judgeBeginning() override { return std::nullopt; }
  MaybeSetback judgeReadiness() override;
  bool endOnPort() override;
  bool isProven() const override;
  std::string whyUnproven() const override;
};

}  // namespace quordalvane
