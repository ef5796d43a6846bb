#pragma once

#include <string>

#include "job/Proof.h"

namespace quordalvane {

/// Asks the printer nothing, and proves nothing.
class NoProof final : public Proof {
 public:
  /// `why` there is no proof, for a person. `dropCommand` must outlive it.
  NoProof(std::string why, ByteView dropCommand, PortLink& link, PrintResult& result);

  MaybeSetback begin() override { return std::nullopt; }
  MaybeSetback end(ByteView data) override;
  void leave() override {}
  ByteView dropCommand() const override { return dropCommand_; }

 private:
  const std::string why_;
  const ByteView dropCommand_;
};

}  // namespace quordalvane
