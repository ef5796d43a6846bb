#pragma once

#include <chrono>
#include <string>

#include <quordalvane/QuorIOPort.h>

#include "job/OwedAnswers.h"
#include "job/Proof.h"

namespace quordalvane {

/// A proof that uses the port's checked block. This class is the common part for both emulations.
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

  /// Sends `command`, which ends with a status request, and waits until the printer has answered
  /// every request.
  MaybeSetback exchange(ByteView command);
  MaybeSetback awaitAnswers();
  QuorPrinterStatus_2& status() { return status_; }
  const QuorPrinterStatus_2& status() const { return status_; }

 private:
  /// Checks the printer before the block. Returns a setback with the reason if no block may begin.
  virtual MaybeSetback prepare() = 0;

  /// The command that requests one status answer.
  virtual ByteView request() const = 0;

  /// Judges whether the printer is ready. Called when all requests have been answered.
  virtual MaybeSetback judgeReadiness() = 0;

  /// Before the data, sends a mark that the printer counts. If the printer is switched off and on
  /// during the job, the count begins at 0 again, and at the end this mark is missing from the
  /// count.
  virtual MaybeSetback markBeginning() = 0;

  /// Ends the block and waits for the printer. Returns false if the block did not end in time.
  virtual bool endInTime() = 0;

  /// Judges a block that has ended. The end alone proves nothing: the block also ends if the
  /// printer is off line.
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
  bool isBeginning_ = true;  // answers are counted only while this is true: before the data is sent
  QuorPrinterStatus_2 status_ = {};
};

}  // namespace quordalvane
