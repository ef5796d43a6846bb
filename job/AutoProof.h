#pragma once

#include <memory>

#include "job/EscPosAnswers.h"
#include "job/PortMemory.h"
#include "job/Proof.h"

namespace quordalvane {

/// Asks an ESC/POS printer which proof it gives, and then is that proof. The answer is kept for the
/// port's life, unless a printer that seemed to give none answers after all.
class AutoProof final : public Proof {
 public:
  AutoProof(PortLink& link, PrintResult& result);

  MaybeSetback begin() override;
  MaybeSetback end(ByteView data) override { return chosen_->end(data); }
  void leave() override;
  ByteView dropCommand() const override;
  void bytesWritten(ByteView bytes) override;
  void bytesRead(ByteView bytes) override;

 private:
  MaybeSetback find();
  MaybeSetback ask();

  PortMemory& memory_;
  EscPosAnswers answers_;
  std::unique_ptr<Proof> chosen_;  // null until the printer has answered
};

}  // namespace quordalvane
