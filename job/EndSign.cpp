#include "job/EndSign.h"

#include <algorithm>

#include "job/DropCommand.h"
#include "job/PrintData.h"
#include "job/RealTimeStatus.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

// At this interval the printer is asked for its status, until it has finished the job.
constexpr auto statusPause = std::chrono::seconds(1);

// A wait that counts whole seconds ends at most one second after its limit.
constexpr auto wholeSecond = std::chrono::seconds(1);

}  // namespace

ByteView EndSign::dropCommand() const {
  return clearBuffer;
}

MaybeSetback EndSign::begin() {
  if (auto setback = refuseUnready(link(), answers_, result())) {
    return setback;
  }
  return prepare();
}

MaybeSetback EndSign::end(ByteView data) {
  if (const auto cut = endSignObstacle(data)) {
    return Setback{PrintObstacle::NoProof, "cannot be confirmed: " + *cut};
  }
  std::vector<std::uint8_t> question;
  if (auto setback = makeQuestion(data, question)) {
    return setback;
  }
  return askAndAwait(question);
}

MaybeSetback EndSign::askAndAwait(ByteView question) {
  if (auto setback = link().send(question)) {
    return setback;
  }
  return awaitSign() ? std::nullopt : whyUnseen();
}

/// Waits for the sign that the job was printed. During the wait, reports why the printer has
/// paused.
bool EndSign::awaitSign() {
  const auto limit =
      std::chrono::milliseconds(link().port().endCheckedBlockTimeoutMillis()) + wholeSecond;
  const auto start = link().now();
  const auto isEnough = [this](ByteView) { return isDecided(); };
  while (!link().await(isEnough, std::min<std::chrono::nanoseconds>(statusPause, limit))) {
    if (!link().port().isConnected() || link().now() - start > limit) {
      return isSeen();
    }
    noteStatus();
  }
  return isSeen();
}

void EndSign::noteStatus() {
  const auto isEnough = [this] { return isDecided(); };
  if (!askRealTimeStatus(link(), answers_, result(), statusPause, isEnough)) {
    reportWaiting(whyNotReady(*result().status));
  }
}

MaybeSetback EndSign::whyUnseen() {
  if (!isPossible()) {
    return Setback{PrintObstacle::NoProof,
                   "the printer gave more answers than this job has asked questions"};
  }
  noteStatus();
  if (const std::string why = result().status ? whyNotReady(*result().status) : ""; !why.empty()) {
    return Setback{PrintObstacle::PrinterNotReady, why};
  }
  const auto limit = link().port().endCheckedBlockTimeoutMillis();
  return link().failedExchange("no confirmation within " + inSeconds(limit));
}

}  // namespace quordalvane
