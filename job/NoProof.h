#pragma once

#include <string>

#include "job/Proof.h"

namespace quordalvane {

/// A proof that asks the printer nothing and proves nothing.
class NoProof final : public Proof {
 public:
  /// `why` says, as a text for a person, why there is no proof. The bytes of `dropCommand` must
  /// outlive this object.
  NoProof(std::string why, ByteView dropCommand, PortLink& link, PrintResult& result);

  MaybeSetback begin() override;
  MaybeSetback end(ByteView data) override;
  void leave() override {}
  ByteView dropCommand() const override { return dropCommand_; }

 private:
  const std::string why_;
  const ByteView dropCommand_;
};

}  // namespace quordalvane
