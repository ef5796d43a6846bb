#pragma once

#include <memory>

#include "job/EscPosAnswers.h"
#include "job/PortMemory.h"
#include "job/Proof.h"

namespace quordalvane {

/// Asks an ESC/POS printer which proof it gives, and then forwards all calls to that proof. The
/// result of the search is kept for as long as the port exists. The printer is asked again only if
/// the search found no proof and the printer has later sent an answer that can prove a job.
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
