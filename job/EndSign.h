#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "job/EscPosAnswers.h"
#include "job/Proof.h"

namespace quordalvane {

/// The common part of the proofs of ordinary ESC/POS printers. The job ends with a query, which the
/// printer answers after it has printed everything before the query; this answer is the sign that
/// the job was printed. An ordinary ESC/POS printer keeps its job while it is off line and
/// continues later, so the proof waits up to the end-of-block time-out. No command of a checked
/// block is sent.
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

  /// Sends `question` and waits for the sign. If the sign arrives, the job was printed.
  MaybeSetback askAndAwait(ByteView question);

 private:
  /// Called before the data is sent. Prevents a late answer to a query of an earlier job from being
  /// taken for the sign that this job was printed. Returns a setback if the data must not be sent.
  virtual MaybeSetback prepare() { return std::nullopt; }

  /// Stores in `question` the query that will follow `data`. Returns a setback if the answer to
  /// this query could not prove that the data was printed, for example because the data itself
  /// could cause the answer.
  virtual MaybeSetback makeQuestion(ByteView data, std::vector<std::uint8_t>& question) = 0;

  /// Returns whether the sign of this job has arrived.
  virtual bool isSeen() const = 0;

  /// Returns false if the sign has not arrived and cannot arrive any more.
  virtual bool isPossible() const { return true; }

  /// Returns true if a longer wait cannot change the result.
  bool isDecided() const { return isSeen() || !isPossible(); }

  bool awaitSign();
  void noteStatus();
  MaybeSetback whyUnseen();

  EscPosAnswers answers_;
};

}  // namespace quordalvane
