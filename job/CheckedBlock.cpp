#include "job/CheckedBlock.h"

#include <algorithm>

#include "iphone-IOPort/Commands.h"
#include "job/DropCommand.h"
#include "job/PrintData.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;

// A wait of the port may last longer than its limit, because the port counts whole seconds and
// finishes an exchange that has begun. A wait that exceeds its limit by more than this time is
// abandoned.
constexpr auto timeToLeave = std::chrono::seconds(4);

}  // namespace

CheckedBlock::CheckedBlock(PortLink& link, PrintResult& result)
    : Proof(link, result), answers_(link.port().emulation()) {}

void CheckedBlock::bytesWritten(ByteView bytes) {
  if (isBeginning_) {
    answers_.written(bytes);
  }
}

void CheckedBlock::bytesRead(ByteView bytes) {
  if (isBeginning_) {
    answers_.read(bytes);
  }
}

MaybeSetback CheckedBlock::begin() {
  if (auto setback = prepare()) {
    return setback;
  }
  if (auto setback = beginOnPort()) {
    return setback;
  }
  if (auto setback = synchronise()) {
    return setback;
  }
  auto setback = markBeginning();
  isBeginning_ = false;
  return setback;
}

MaybeSetback CheckedBlock::beginOnPort() {
  ExternalAccessoryPort& port = link().port();
  const auto limit =
      std::max(link().timeout(), std::chrono::milliseconds(port.holdPrintTimeoutMillis()));
  bool isExchanged = false;
  try {
    isExchanged = link().within(limit + timeToLeave, [&] {
      return port.beginCheckedBlock(&status_, statusLevel, &result().resultCode);
    });
  } catch (const PortException&) {
    return link().failedExchange("the link did not take a request");
  } catch (const PortLink::GivenUp&) {
    return link().failedExchange("the exchange with the printer did not end in time");
  }
  keepStatus();
  if (result().resultCode == ZKQuorIOResultCodePaperPresentError) {
    return Setback{PrintObstacle::PrinterNotReady, "paper was left in the printer's exit"};
  }
  if (!isExchanged) {
    return link().failedExchange(whyNotBegun());
  }
  if (status_.offline != 0) {
    return Setback{PrintObstacle::PrinterNotReady, whyOffline(status_)};
  }
  return std::nullopt;
}

std::string CheckedBlock::whyNotBegun() const {
  if (status_.rawLength == 0 || status_.etbCounter == 0) {
    return whyNoAnswer();
  }
  return "the printer did not reset its counter within " + inSeconds(link().port().timeoutMillis());
}

/// Waits for the answers to all earlier requests, and then sends one more request. The answer to
/// this last request arrives after all reports of earlier jobs. In line mode this answer contains
/// the counter. If the counter is not 0, a mark of an earlier job was counted after the reset, and
/// this job fails. In all other cases every confirmation that arrives after this answer belongs to
/// this job.
MaybeSetback CheckedBlock::synchronise() {
  link().drain();
  if (auto setback = awaitAnswers()) {
    return setback;
  }
  answers_.forgetSurplus();
  if (auto setback = exchange(request())) {
    return setback;
  }
  return judgeReadiness();
}

MaybeSetback CheckedBlock::exchange(ByteView command) {
  auto setback = link().send(command);
  return setback ? setback : awaitAnswers();
}

MaybeSetback CheckedBlock::awaitAnswers() {
  if (link().await([this](ByteView) { return !answers_.isAnyOwed(); }, link().timeout())) {
    return std::nullopt;
  }
  return link().failedExchange(whyNoAnswer());
}

std::string CheckedBlock::whyNoAnswer() const {
  if (!answers_.last().empty()) {
    return "the printer has not answered every question";
  }
  return answers_.isAnyOdd() ? "the printer's answer is not a status of this emulation" : noAnswer;
}

/// Sends the command that ends a data cancel, because the abandoned block may have begun one. While
/// a data cancel lasts, a data time-out of this job or of an earlier job can make the printer drop
/// the data of later jobs.
void CheckedBlock::leave() {
  link().port().write(dataCancelEnd, PortLink::Reply::None);
}

ByteView CheckedBlock::dropCommand() const {
  return dropAll;
}

MaybeSetback CheckedBlock::end(ByteView data) {
  link().drain();
  status_ = {};
  const std::string failure = endBlock();
  keepStatus();
  return judgeEnd(data, failure);
}

MaybeSetback CheckedBlock::judgeEnd(ByteView data, const std::string& failure) {
  const auto obstacle = confirmationObstacle(data, link().port().emulation());
  // An obstacle is a command in the data that prevents a confirmation. This command may have caused
  // the time-out, so the obstacle is reported instead of the time-out.
  if (!failure.empty() && (!obstacle || link().isLost())) {
    return link().failedExchange(failure);
  }
  if (obstacle) {
    return Setback{PrintObstacle::NoProof, "cannot be confirmed: " + *obstacle};
  }
  return judgeProof();
}

/// Ends the block. Returns "" on success, and otherwise the reason why the block did not end.
std::string CheckedBlock::endBlock() {
  const auto limit = std::chrono::milliseconds(link().port().endCheckedBlockTimeoutMillis());
  const auto start = link().now();
  bool hasEnded = false;
  try {
    hasEnded = link().within(limit + timeToLeave, [this] { return endInTime(); });
  } catch (const PortException&) {
    return "the link did not take a request";
  } catch (const PortLink::GivenUp&) {
  }
  return hasEnded ? "" : whyNotEnded(link().now() - start);
}

std::string CheckedBlock::whyNotEnded(std::chrono::nanoseconds waited) const {
  const std::uint32_t limit = link().port().endCheckedBlockTimeoutMillis();
  return waited < std::chrono::milliseconds(limit) ? "the printer's last status could not be read"
                                                   : "no confirmation within " + inSeconds(limit);
}

void CheckedBlock::keepStatus() {
  if (status_.rawLength > 0) {
    result().status = status_;
  }
}

}  // namespace quordalvane
