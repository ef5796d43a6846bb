#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "job/EscPosAnswers.h"
#include "job/Proof.h"

namespace quordalvane {

/// The common part of the proofs of ordinary ESC/POS printers: the job ends with a question that
/// the printer answers after it has printed everything before it. Such a printer keeps its job
/// while it is off line, and then continues: it is waited for up to the end-of-block time-out.
/// Nothing of a checked block is sent.
class EndSign : public Proof {
 public:
  MaybeSetback begin() override;
  MaybeSetback end(ByteView data) override;
  void leave() override {}
  ByteView dropCommand() const override;
  void bytesRead(ByteView bytes) override { answers_.feed(bytes); }

 protected:
  EndSign(PortLink& link, PrintResult& result) : Proof(link, result) {}

  const EscPosAnswers& answers() const { return answers_; }

  /// Sends a question, and waits until the sign is seen. Success is the proof.
  MaybeSetback askAndAwait(ByteView question);

 private:
  /// Makes sure that no sign but this job's can be on its way.
  virtual MaybeSetback prepare() { return std::nullopt; }

  /// The question for a job of `data`; a setback if the data could make the sign itself.
  virtual MaybeSetback makeQuestion(ByteView data, std::vector<std::uint8_t>& question) = 0;

  /// Whether the printer's sign for this job was seen.
  virtual bool isSeen() const = 0;

  /// Whether an unseen sign could still arrive.
  virtual bool isPossible() const { return true; }

  bool awaitSign();
  void noteStatus();
  MaybeSetback whyUnseen();

  EscPosAnswers answers_;
};

}  // namespace quordalvane
