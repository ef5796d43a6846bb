#include "job/RealTimeStatus.h"

#include <optional>

#include "iphone-IOPort/PortC.h"
#include "job/EscPosAnswers.h"
#include "job/StatusText.h"

namespace quordalvane {
namespace {

struct Query {
  std::uint8_t command[3];
  StatusType type;
};

constexpr Query queries[] = {
    {{0x10, 0x04, 0x01}, StatusType::CashDrawer},
    {{0x10, 0x04, 0x02}, StatusType::CoverOpen},
    {{0x10, 0x04, 0x04}, StatusType::PaperEmpty},
};

constexpr auto silent =
    "the printer does not answer; it may be switched off, set to another emulation, or in use by "
    "another program";

/// The answer to the query; empty if there is none within the time-out.
std::optional<std::uint8_t> answerTo(const Query& query, PortLink& link) {
  EscPosAnswers answers;
  const auto isAnswered = [&answers](ByteView bytes) {
    answers.feed(bytes);
    return answers.lastRealTimeStatus().has_value();
  };
  if (!link.send(query.command)) {
    link.await(isAnswered, link.timeout());
  }
  return answers.lastRealTimeStatus();
}

}  // namespace

MaybeSetback askRealTimeStatus(PortLink& link, PrintResult& result) {
  link.drain();
  QuorPrinterStatus_2 status = {};
  for (const Query& query : queries) {
    const auto answer = answerTo(query, link);
    if (!answer) {
      return link.failedExchange(silent);
    }
    status.raw[0] = *answer;
    status.rawLength = 1;
    BuildParsedStatusESCPOS(&status, query.type);
  }
  result.status = status;
  return std::nullopt;
}

MaybeSetback refuseUnready(PortLink& link, PrintResult& result) {
  if (auto setback = askRealTimeStatus(link, result)) {
    return setback;
  }
  const std::string errors = errorsIn(*result.status);
  if (errors.empty() && result.status->offline == 0) {
    return std::nullopt;
  }
  return Setback{PrintObstacle::PrinterNotReady, errors.empty() ? "off line" : errors};
}

}  // namespace quordalvane
