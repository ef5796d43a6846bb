#include "job/EscPosBlock.h"

#include <string>

#include "iphone-IOPort/Commands.h"
#include "iphone-IOPort/PortC.h"
#include "job/HearOut.h"
#include "job/RealTimeStatus.h"
#include "job/StatusText.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;
constexpr std::uint8_t countOfOneMark = 1;
constexpr std::uint8_t countOfTwoMarks = 2;

// A mark and a status request. The printer reports the mark before it answers the request; if only
// the answer arrives, the printer does not send reports.
constexpr std::uint8_t markAndRequest[] = {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0x10, 0x04, 0x01};

// How long the operation of the port may continue after the printer's report has arrived.
constexpr auto timeToEnd = std::chrono::seconds(2);

}  // namespace

EscPosBlock::EscPosBlock(PortLink& link, PrintResult& result)
    : CheckedBlock(link, result), memory_(memoryOf(link.port().shared_from_this())) {}

ByteView EscPosBlock::request() const {
  return statusRequest;
}

/// The beginning of a block makes the printer drop the data that it holds. An off-line printer may
/// hold an earlier job that it will still print, so the status is checked first.
MaybeSetback EscPosBlock::prepare() {
  const auto& escPos = answers().escPos();
  if (memory_.owed.contains(ProofKind::Block) &&
      !hearOut(link(), statusRequest, [&] { return escPos.realTimeCount(); })) {
    return Setback{PrintObstacle::ExchangeFailed,
                   "the printer still owes answers to an earlier job"};
  }
  return refuseUnready(link(), answers().escPos(), result());
}

MaybeSetback EscPosBlock::judgeReadiness() {
  if ((answers().last().front() & escPosOfflineBit) != 0) {
    return Setback{PrintObstacle::PrinterNotReady, "off line"};
  }
  return std::nullopt;
}

MaybeSetback EscPosBlock::markBeginning() {
  sinceMark_ = {};
  memory_.owed.insert(ProofKind::Block);
  if (auto setback = exchange(markAndRequest)) {
    return setback;
  }
  link().await([this](ByteView) { return sinceMark_.lastReport().has_value(); }, link().timeout());
  isFirstMarkReported_ = sinceMark_.lastReport() == countOfOneMark;
  if (sinceMark_.lastReport() && !isFirstMarkReported_) {
    return Setback{PrintObstacle::ExchangeFailed,
                   "the printer's counter cannot confirm this job, because the counter includes a "
                   "mark of an earlier job"};
  }
  return std::nullopt;
}

/// If the printer has not reported the first mark, it will not report the second either, so there
/// is nothing to wait for.
MaybeSetback EscPosBlock::end(ByteView data) {
  if (!isFirstMarkReported_) {
    leave();
    return Setback{PrintObstacle::NoProof, "this printer does not report the end of a job"};
  }
  link().drain();
  sinceMark_ = {};
  auto setback = CheckedBlock::end(data);
  if (!setback) {
    memory_.owed.erase(ProofKind::Block);
  }
  return setback;
}

/// Calls the port's operation that ends the block. After the printer's report has arrived,
/// `stopIfReported` may abandon this operation before the last status is read. In that case this
/// function asks for the status.
bool EscPosBlock::endInTime() {
  awaitsReport_ = true;
  try {
    const bool hasEnded = link().port().endCheckedBlock(&status(), statusLevel);
    awaitsReport_ = false;
    return hasEnded;
  } catch (const Reported&) {
    return link().port().getParsedStatus(&status(), statusLevel);
  }
}

void EscPosBlock::bytesRead(ByteView bytes) {
  CheckedBlock::bytesRead(bytes);
  sinceMark_.feed(bytes);
  stopIfReported();
}

/// Ends the port's wait some time after the report has arrived. The port recognises only a report
/// that arrives in one read; for any other report it would wait until its time-out.
void EscPosBlock::stopIfReported() {
  if (!awaitsReport_ || sinceMark_.lastReport() != countOfTwoMarks) {
    return;
  }
  reportedAt_ = reportedAt_.value_or(link().now());
  if (link().now() - *reportedAt_ > timeToEnd) {
    awaitsReport_ = false;
    throw Reported();
  }
}

MaybeSetback EscPosBlock::judgeProof() const {
  const auto count = sinceMark_.lastReport();
  if (count == countOfTwoMarks) {
    return std::nullopt;
  }
  if (status().offline != 0) {
    return Setback{PrintObstacle::PrinterNotReady, whyOffline(status())};
  }
  if (!count) {
    return Setback{PrintObstacle::NoProof,
                   "the printer was off line for a while or garbled its report, and has not "
                   "reported the end of the job"};
  }
  if (*count < countOfTwoMarks) {
    return Setback{PrintObstacle::NoProof,
                   "the printer lost its count during the job; perhaps it was switched off and on"};
  }
  return Setback{PrintObstacle::NoProof, "the printer reported the ends of " +
                                             std::to_string(*count - 1) +
                                             " jobs instead of only this job"};
}

}  // namespace quordalvane
