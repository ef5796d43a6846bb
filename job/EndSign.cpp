#include "job/EndSign.h"

#include <algorithm>

#include "job/PrintData.h"
#include "job/RealTimeStatus.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

// Drops the data that is received and not printed; the printer confirms it by 37 25 00.
constexpr std::uint8_t clearBuffer[] = {0x10, 0x14, 0x08, 0x01, 0x03, 0x14, 0x01, 0x06, 0x02, 0x08};

// Between looks at the state of a printer that has not finished.
constexpr auto statusPause = std::chrono::seconds(1);

// Limits count in whole seconds, and may pass by the rest of one.
constexpr auto wholeSecond = std::chrono::seconds(1);

}  // namespace

ByteView EndSign::dropCommand() const {
  return clearBuffer;
}

MaybeSetback EndSign::begin() {
  if (auto setback = refuseUnready(link(), result())) {
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
  if (auto setback = link().send(question)) {
    return setback;
  }
  if (awaitSign()) {
    return std::nullopt;
  }
  return whyUnseen();
}

/// Waits for the sign, and reports meanwhile why the printer has paused.
bool EndSign::awaitSign() {
  const auto limit =
      std::chrono::milliseconds(link().port().endCheckedBlockTimeoutMillis()) + wholeSecond;
  const auto start = link().now();
  const auto isDecided = [this](ByteView) { return isSeen() || !isPossible(); };
  while (!link().await(isDecided, std::min<std::chrono::nanoseconds>(statusPause, limit))) {
    if (!link().port().isConnected() || link().now() - start > limit) {
      return isSeen();
    }
    noteStatus();
  }
  return isSeen();
}

void EndSign::noteStatus() {
  if (askRealTimeStatus(link(), result(), statusPause)) {
    return;
  }
  const std::string errors = errorsIn(*result().status);
  reportWaiting(errors.empty() && result().status->offline != 0 ? "off line" : errors);
}

MaybeSetback EndSign::whyUnseen() {
  if (!isPossible()) {
    return Setback{PrintObstacle::NoProof,
                   "the printer answered more often than this job has asked it"};
  }
  noteStatus();
  if (result().status) {
    const std::string errors = errorsIn(*result().status);
    if (!errors.empty() || result().status->offline != 0) {
      return Setback{PrintObstacle::PrinterNotReady, errors.empty() ? "off line" : errors};
    }
  }
  const auto limit = link().port().endCheckedBlockTimeoutMillis();
  Setback setback = link().failedExchange("no confirmation within " + inSeconds(limit));
  return setback;
}

}  // namespace quordalvane
