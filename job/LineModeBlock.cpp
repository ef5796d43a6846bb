#include "job/LineModeBlock.h"

#include <algorithm>

#include "iphone-IOPort/PortC.h"
#include "job/StatusBlock.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;
constexpr std::uint8_t countOfTwoMarks = 2;
constexpr std::uint32_t lengthWithCounter = 7;

bool hasCounter(const QuorPrinterStatus_2& status) {
  return isStatusBlock(status) && status.rawLength >= lengthWithCounter;
}

}  // namespace

ByteView LineModeBlock::request() const {
  return escAckSoh;
}

MaybeSetback LineModeBlock::judgeReadiness() {
  const auto& block = answers().last();
  QuorPrinterStatus_2& now = status();
  now.rawLength = static_cast<std::uint32_t>(block.size());
  std::copy(block.begin(), block.end(), now.raw);
  BuildParsedStatus(&now);
  result().status = now;
  if (!hasCounter(now)) {
    return Setback{PrintObstacle::ExchangeFailed,
                   "the printer's status of " + grouped(block.size()) +
                       " bytes holds no counter, without which no job can be confirmed"};
  }
  if (now.offline != 0) {
    return Setback{PrintObstacle::PrinterNotReady, whyOffline(now)};
  }
  if (now.etbCounter != 0) {
    return Setback{PrintObstacle::ExchangeFailed,
                   "the end of an earlier job was counted for this one before it began"};
  }
  return std::nullopt;
}

bool LineModeBlock::endOnPort() {
  return link().port().endCheckedBlock(&status(), statusLevel);
}

bool LineModeBlock::isProven() const {
  return hasCounter(status()) && status().offline == 0 && status().etbCounter == countOfTwoMarks;
}

std::string LineModeBlock::whyUnproven() const {
  return "the printer's last answer is not a status with a counter";
}

}  // namespace quordalvane
