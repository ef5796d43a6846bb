// How a job begins and ends its checked block.

#include <algorithm>
#include <chrono>
#include <string>

#include "iphone-IOPort/Commands.h"
#include "iphone-IOPort/PortC.h"
#include "job/PrintData.h"
#include "job/PrintJob.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;

// The signs by which a block is confirmed.
constexpr std::uint8_t countOfTwoMarks = 2;
constexpr std::uint8_t countOfOneMark = 1;
constexpr std::uint32_t lengthWithCounter = 7;

// How long a port may go on once the printer's report has been seen.
constexpr auto timeToEnd = std::chrono::seconds(2);

bool hasCounter(const QuorPrinterStatus_2& status) {
  return status.rawLength >= lengthWithCounter && (status.raw[0] & 0xc0) == 0x80;
}

std::string whyOwed(const OwedAnswers& answers) {
  if (!answers.last().empty()) {
    return "the printer has not answered all that it was asked";
  }
  return answers.isAnyOdd() ? "the printer's answer is not a status of this emulation"
                            : "the printer does not answer";
}

}  // namespace

bool PrintJob::begin() {
  enter(PrintStage::Begin);
  bool exchanged = false;
  try {
    exchanged = port_->beginCheckedBlock(&status_, statusLevel, &result_.resultCode);
  } catch (const PortException& exception) {
    return stopForLostExchange(exception.reason());
  }
  if (status_.rawLength > 0) {
    result_.status = status_;
  }
  if (result_.resultCode == ZKQuorIOResultCodePaperPresentError) {
    return stop(PrintObstacle::PrinterNotReady, "paper was left in the printer's exit");
  }
  if (!exchanged) {
    return stopForLostExchange("the printer gave no status, or did not reset its counter, within " +
                               inSeconds(port_->timeoutMillis()));
  }
  if (status_.offline != 0) {
    return stop(PrintObstacle::PrinterNotReady, whyOffline(status_));
  }
  if (port_->emulation() == ZKEmulationESCPOS && !result_.status) {
    return stopForLostExchange("the printer does not answer");
  }
  return true;
}

/// One exchange behind the block's data cancel, once all earlier questions are answered. Its answer
/// comes after everything that the printer had to say of earlier jobs, and in line mode shows that
/// none of them was counted since: every sign from here on is this job's.
bool PrintJob::synchronise() {
  if (port_->emulation() == ZKEmulationUnknown) {
    return true;
  }
  const bool isLineMode = port_->emulation() == ZKEmulationQuorLine;
  drainInput();
  if (!awaitAnswers()) {
    return false;
  }
  answers_.forgetSurplus();
  std::uint64_t requestBytes = 0;
  return move(isLineMode ? std::span<const std::uint8_t>(escAckSoh) : realTimeStatusRequest,
              requestBytes) &&
         awaitAnswers() && (isLineMode ? isReadyInLineMode() : isReadyInESCPOS());
}

/// Reads until the printer owes no answer. False at the time-out or when the link is lost.
bool PrintJob::awaitAnswers() {
  Clock& clock = port_->platform().clock();
  const auto limit = std::chrono::milliseconds(std::max(port_->timeoutMillis(), 1000U));
  const auto start = clock.monotonic();
  while (answers_.isAnyOwed()) {
    if (!port_->read(128) || clock.monotonic() - start > limit) {
      return stopForLostExchange(whyOwed(answers_));
    }
    if (answers_.isAnyOwed()) {
      clock.usleep(lookPauseMicroseconds);
    }
  }
  return true;
}

bool PrintJob::isReadyInLineMode() {
  const auto& block = answers_.last();
  status_.rawLength = static_cast<std::uint32_t>(block.size());
  std::copy(block.begin(), block.end(), status_.raw);
  BuildParsedStatus(&status_);
  result_.status = status_;
  if (!hasCounter(status_)) {
    return stop(PrintObstacle::ExchangeFailed,
                "the printer's status of " + grouped(block.size()) +
                    " bytes holds no counter, without which no job can be confirmed");
  }
  if (status_.offline != 0) {
    return stop(PrintObstacle::PrinterNotReady, whyOffline(status_));
  }
  if (status_.etbCounter != 0) {
    return stop(PrintObstacle::ExchangeFailed,
                "the end of an earlier job was counted for this one before it began");
  }
  return true;
}

bool PrintJob::isReadyInESCPOS() {
  if ((answers_.last().front() & escPosOfflineBit) != 0) {
    return stop(PrintObstacle::PrinterNotReady, "off line");
  }
  return true;
}

/// Ends the guarded stretch of a block that is not gone on with. A printer that was given a data
/// time-out, now or by an earlier job, would else drop what others send it later.
void PrintJob::leaveBlock() {
  port_->write(dataCancelEnd);
}

void PrintJob::end(std::span<const std::uint8_t> data) {
  enter(PrintStage::End);
  drainInput();
  report_.clear();
  status_ = {};
  const std::string failure = endBlock();
  if (status_.rawLength > 0) {
    result_.status = status_;
  }
  const auto obstacle = confirmationObstacle(data, port_->emulation());
  // A mark in the data can itself be what lets the wait for the sign time out.
  if (!failure.empty() && (!obstacle || isLinkLost())) {
    stopForLostExchange(failure);
  } else if (obstacle) {
    stop(PrintObstacle::NoProof, "cannot be confirmed: " + *obstacle);
  } else if (isProven()) {
    result_.outcome = PrintOutcome::Printed;
  } else if (status_.offline != 0) {
    stop(PrintObstacle::PrinterNotReady, whyOffline(status_));
  } else {
    stop(PrintObstacle::NoProof, whyUnproven());
  }
}

/// Why a block that ended on a printer that is on line proves nothing.
std::string PrintJob::whyUnproven() const {
  if (port_->emulation() == ZKEmulationQuorLine) {
    return "the printer's last answer is not a status with a counter";
  }
  if (const auto count = report_.lastCount()) {
    return "the printer reported " + std::to_string(*count) + " ends of jobs instead of this one's";
  }
  return "the printer was off line for a while or garbled its report, and has not reported the end "
         "of the job";
}

/// Ends the block on the port. Returns why that failed; "" if it did not.
std::string PrintJob::endBlock() {
  const auto start = port_->platform().clock().monotonic();
  try {
    const bool ended = endOnPort();
    awaitsReport_ = false;
    return ended ? "" : whyNotEnded(port_->platform().clock().monotonic() - start);
  } catch (const PortException& exception) {
    awaitsReport_ = false;
    return exception.reason();
  }
}

std::string PrintJob::whyNotEnded(std::chrono::nanoseconds waited) const {
  if (port_->emulation() == ZKEmulationUnknown) {
    return "no job can be confirmed without a known emulation";
  }
  const std::uint32_t limit = port_->endCheckedBlockTimeoutMillis();
  return waited < std::chrono::milliseconds(limit) ? "the printer's last status could not be had"
                                                   : "no confirmation within " + inSeconds(limit);
}

/// As the port ends a block; with a last status also where the port was not left to come to it.
bool PrintJob::endOnPort() {
  awaitsReport_ = port_->emulation() == ZKEmulationESCPOS;
  try {
    return port_->endCheckedBlock(&status_, statusLevel);
  } catch (const Reported&) {
    return port_->getParsedStatus(&status_, statusLevel);
  }
}

/// A port counts only a report that comes in one piece, and would wait for another to its time-out.
void PrintJob::stopIfReported() {
  if (!awaitsReport_ || report_.lastCount() != countOfOneMark) {
    return;
  }
  const auto now = port_->platform().clock().monotonic();
  reportedAt_ = reportedAt_.value_or(now);
  if (now - *reportedAt_ > timeToEnd) {
    awaitsReport_ = false;
    throw Reported();
  }
}

/// Whether the printer's sign for this job has been seen. That the block ended proves nothing: an
/// off-line printer ends it, too.
bool PrintJob::isProven() const {
  if (port_->emulation() == ZKEmulationQuorLine) {
    return hasCounter(status_) && status_.offline == 0 && status_.etbCounter == countOfTwoMarks;
  }
  return report_.lastCount() == countOfOneMark;
}

}  // namespace quordalvane
