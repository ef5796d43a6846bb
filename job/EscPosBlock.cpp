#include "job/EscPosBlock.h"

#include <utility>

#include "iphone-IOPort/Commands.h"
#include "iphone-IOPort/PortC.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;
constexpr std::uint8_t countOfOneMark = 1;

// How long a port may go on once the printer's report has been seen.
constexpr auto timeToEnd = std::chrono::seconds(2);

}  // namespace

ByteView EscPosBlock::request() const {
  return realTimeStatusRequest;
}

MaybeSetback EscPosBlock::judgeBeginning() {
  if (!result().status) {
    return link().failedExchange("the printer does not answer");
  }
  return std::nullopt;
}

MaybeSetback EscPosBlock::judgeReadiness() {
  if ((answers().last().front() & escPosOfflineBit) != 0) {
    return Setback{PrintObstacle::PrinterNotReady, "off line"};
  }
  return std::nullopt;
}

MaybeSetback EscPosBlock::end(ByteView data) {
  link().drain();
  report_.clear();
  return CheckedBlock::end(data);
}

/// As the port ends a block; with a last status also if the port had to be left before.
bool EscPosBlock::endOnPort() {
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
  report_.feed(bytes);
  stopIfReported();
}

/// A port counts only a report in one piece, and would wait for another to its time-out.
void EscPosBlock::stopIfReported() {
  if (!awaitsReport_ || report_.lastCount() != countOfOneMark) {
    return;
  }
  reportedAt_ = reportedAt_.value_or(link().now());
  if (link().now() - *reportedAt_ > timeToEnd) {
    awaitsReport_ = false;
    throw Reported();
  }
}

bool EscPosBlock::isProven() const {
  return report_.lastCount() == countOfOneMark;
}

std::string EscPosBlock::whyUnproven() const {
  if (const auto count = report_.lastCount()) {
    return "the printer reported " + std::to_string(*count) + " ends of jobs instead of this one's";
  }
  return "the printer was off line for a while or garbled its report, and has not reported the end "
         "of the job";
}

}  // namespace quordalvane
