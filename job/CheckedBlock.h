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
  QuorPrinterStatus_2& status() { return status_; }
  const QuorPrinterStatus_2& status() const { return status_; }

 private:
  /// A request for one status answer.
  virtual ByteView request() const = 0;

  /// Judges the status after the block has begun, and after all questions were answered.
  /// @{
  virtual MaybeSetback judgeBeginning() = 0;
  virtual MaybeSetback judgeReadiness() = 0;
  /// @}

  /// Ends the block on the port. Returns the port's result.
  virtual bool endOnPort() = 0;

  /// Whether the printer's sign for this job was seen. The end of the block alone proves nothing:
  /// an off-line printer ends it as well.
  virtual bool isProven() const = 0;

  /// Why a block that ended on a printer that is on line proves nothing.
  virtual std::string whyUnproven() const = 0;

  MaybeSetback beginOnPort();
  MaybeSetback synchronise();
  MaybeSetback awaitAnswers();
  std::string whyNoAnswer() const;
  std::string endBlock();
  std::string whyNotEnded(std::chrono::nanoseconds waited) const;
  MaybeSetback judgeEnd(ByteView data, const std::string& failure);
  void keepStatus();

  OwedAnswers answers_;
  bool isBeginning_ = true;  // answers are counted until the data goes out
  QuorPrinterStatus_2 status_ = {};
};

}  // namespace quordalvane
