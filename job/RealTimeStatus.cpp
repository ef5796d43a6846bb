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

/// The answer to the query; empty if there is none within the limit.
std::optional<std::uint8_t> answerTo(const Query& query, PortLink& link,
                                     std::chrono::nanoseconds limit) {
  EscPosAnswers answers;
  const auto isAnswered = [&answers](ByteView bytes) {
    answers.feed(bytes);
    return answers.lastRealTimeStatus().has_value();
  };
  if (!link.send(query.command)) {
    link.await(isAnswered, limit);
  }
  return answers.lastRealTimeStatus();
}

}  // namespace

MaybeSetback askRealTimeStatus(PortLink& link, PrintResult& result,
                               std::chrono::nanoseconds limit) {
  QuorPrinterStatus_2 status = {};
  for (const Query& query : queries) {
    const auto answer = answerTo(query, link, limit);
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
  link.drain();
  if (auto setback = askRealTimeStatus(link, result, link.timeout())) {
    return setback;
  }
  const std::string errors = errorsIn(*result.status);
  if (errors.empty() && result.status->offline == 0) {
    return std::nullopt;
  }
  return Setback{PrintObstacle::PrinterNotReady, errors.empty() ? "off line" : errors};
}

}  // namespace quordalvane
