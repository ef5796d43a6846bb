#include "job/LineModeBlock.h"

#include <algorithm>
#include <chrono>

#include "iphone-IOPort/PortC.h"
#include "job/StatusBlock.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;
constexpr std::uint8_t countOfTwoMarks = 2;

// The printer counts these marks but does not answer them, so nobody waits for an answer.
constexpr std::uint8_t mark[] = {0x17};
constexpr std::uint8_t markAndEnd[] = {0x17, 0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};
constexpr auto earlierJobCounted =
    "the printer's counter cannot confirm this job, because the counter includes a mark of an "
    "earlier job";

// A printer that holds no data counts a mark as soon as the mark arrives.
constexpr auto timeToCount = std::chrono::seconds(1);

// A wait ends at most one second after its limit, as a wait of the port does.
constexpr auto wholeSecond = std::chrono::seconds(1);
constexpr std::uint64_t endPollMicroseconds = 100000;

}  // namespace

ByteView LineModeBlock::request() const {
  return escAckSoh;
}

void LineModeBlock::takeStatus() {
  const auto& block = answers().last();
  QuorPrinterStatus_2& now = status();
  now.rawLength = static_cast<std::uint32_t>(block.size());
  std::copy(block.begin(), block.end(), now.raw);
  BuildParsedStatus(&now);
  result().status = now;
}

MaybeSetback LineModeBlock::judgeReadiness() {
  takeStatus();
  if (!hasCounter(status())) {
    return Setback{PrintObstacle::ExchangeFailed,
                   "the printer's status has " + grouped(status().rawLength) +
                       " bytes and no counter, without which no job can be confirmed"};
  }
  if (status().offline != 0) {
    return Setback{PrintObstacle::PrinterNotReady, whyOffline(status())};
  }
  if (status().etbCounter != 0) {
    return Setback{PrintObstacle::ExchangeFailed, earlierJobCounted};
  }
  return std::nullopt;
}

/// Sends the first mark and waits until the printer has counted this mark. If the printer does not
/// count this mark soon, the port's own operation, which sends two marks, will end the block.
MaybeSetback LineModeBlock::markBeginning() {
  if (auto setback = link().send(mark, PortLink::Reply::None)) {
    return setback;
  }
  const auto start = link().now();
  do {
    if (auto setback = exchange(request())) {
      return setback;
    }
    takeStatus();
    if (hasCounter(status()) && status().etbCounter > 1) {
      return Setback{PrintObstacle::ExchangeFailed, earlierJobCounted};
    }
    isFirstMarkCounted_ = hasCounter(status()) && status().etbCounter == 1;
    if (!isFirstMarkCounted_) {
      link().pause();
    }
  } while (!isFirstMarkCounted_ && link().now() - start < timeToCount);
  return std::nullopt;
}

bool LineModeBlock::endInTime() {
  const bool hasEnded = isFirstMarkCounted_
                            ? !link().send(markAndEnd, PortLink::Reply::None) && awaitCount()
                            : link().port().endCheckedBlock(&status(), statusLevel);
  return hasEnded && confirm();
}

/// Waits until the printer has counted both marks of this job, one before and one after the data.
/// The port's `endCheckedBlock` is not used, because it would send two further marks.
bool LineModeBlock::awaitCount() {
  const auto limit = std::chrono::milliseconds(link().port().endCheckedBlockTimeoutMillis());
  const auto start = link().now();
  while (true) {
    const bool isAnswered = link().port().getParsedStatus(&status(), statusLevel);
    if (isAnswered && (status().offline != 0 || status().etbCounter == countOfTwoMarks)) {
      return true;
    }
    if (link().now() - start > limit + wholeSecond) {
      return false;
    }
    link().port().platform().clock().usleep(endPollMicroseconds);
  }
}

/// Asks for the status once more, because a single answer may be damaged or belong to another
/// exchange.
bool LineModeBlock::confirm() {
  if (status().offline != 0 || status().etbCounter != countOfTwoMarks) {
    return true;
  }
  isConfirmed_ = link().port().getParsedStatus(&status(), statusLevel) && hasCounter(status()) &&
                 status().etbCounter == countOfTwoMarks;
  return true;
}

MaybeSetback LineModeBlock::judgeProof() const {
  if (status().offline != 0) {
    return Setback{PrintObstacle::PrinterNotReady, whyOffline(status())};
  }
  if (!isConfirmed_) {
    return Setback{PrintObstacle::NoProof, "the printer's last two answers do not agree"};
  }
  if (const std::string errors = errorsIn(status()); !errors.empty()) {
    return Setback{PrintObstacle::PrinterNotReady, errors};
  }
  return std::nullopt;
}

}  // namespace quordalvane
