#pragma once

#include <chrono>
#include <string>

#include <quordalvane/QuorIOPort.h>

#include "job/OwedAnswers.h"
#include "job/Proof.h"

namespace quordalvane {

/// The proof by the port's checked block: the common part of both emulations.
class CheckedBlock : public Proof {
 public:
  MaybeSetback begin() override;
  MaybeSetback end(ByteView data) override;
  void leave() override;
  ByteView dropCommand() const override;

  void bytesWritten(ByteView bytes) override;
  void bytesRead(ByteView bytes) override;

 protected:
  CheckedBlock(PortLink& link, PrintResult& result);

  const OwedAnswers& answers() const { return answers_; }

  /// Sends `command`, which ends in a request, and waits until the printer owes no answer.
  MaybeSetback exchange(ByteView command);
  MaybeSetback awaitAnswers();
  QuorPrinterStatus_2& status() { return status_; }
  const QuorPrinterStatus_2& status() const { return status_; }

 private:
  /// Refuses a printer on which no block may begin.
  virtual MaybeSetback prepare() = 0;

  /// A request for one status answer.
  virtual ByteView request() const = 0;

  /// Judges the status after all questions were answered.
  virtual MaybeSetback judgeReadiness() = 0;

  /// Sends a mark before the data, so that a printer that is switched off and on during the job,
  /// and counts from 0 again, misses it at the end.
  virtual MaybeSetback markBeginning() = 0;

  /// Ends the block and waits. False if it did not end.
  virtual bool endInTime() = 0;

  /// Judges a block that has ended. The end alone proves nothing: an off-line printer ends it as
  /// well.
  virtual MaybeSetback judgeProof() const = 0;

  MaybeSetback beginOnPort();
  std::string whyNotBegun() const;
  MaybeSetback synchronise();
  std::string whyNoAnswer() const;
  std::string endBlock();
  std::string whyNotEnded(std::chrono::nanoseconds waited) const;
  MaybeSetback judgeEnd(ByteView data, const std::string& failure);
  void keepStatus();

  OwedAnswers answers_;
  bool isBeginning_ = true;  // answers are counted until the data is sent
  QuorPrinterStatus_2 status_ = {};
};

}  // namespace quordalvane
