#pragma once

#include <memory>

#include "job/EscPosAnswers.h"
#include "job/PortMemory.h"
#include "job/Proof.h"

namespace quordalvane {

/// Asks an ESC/POS printer which proof it gives, and then forwards all calls to that proof. The
/// result is kept for as long as the port exists. A later job asks again only in one case: the
/// printer gave no proof, but an answer of a kind that can prove a job arrives while the later job
/// checks that the printer is ready.
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
  std::unique_ptr<Proof> chosen_;  // null until the printer's answer is known
};

}  // namespace quordalvane
