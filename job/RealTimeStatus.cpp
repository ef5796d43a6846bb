#include "job/RealTimeStatus.h"

#include <optional>

#include "iphone-IOPort/PortC.h"
#include "job/StatusText.h"
#include "job/Words.h"

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

bool isAnswered(const Query& query, PortLink& link, const EscPosAnswers& answers,
                std::chrono::nanoseconds limit, const std::function<bool()>& isEnough) {
  const std::uint64_t before = answers.realTimeCount();
  const auto isDone = [&](ByteView) {
    return answers.realTimeCount() > before || (isEnough && isEnough());
  };
  if (!link.send(query.command)) {
    link.await(isDone, limit);
  }
  return answers.realTimeCount() > before;
}

}  // namespace

MaybeSetback askRealTimeStatus(PortLink& link, const EscPosAnswers& answers, PrintResult& result,
                               std::chrono::nanoseconds limit,
                               const std::function<bool()>& isEnough) {
  QuorPrinterStatus_2 status = {};
  for (const Query& query : queries) {
    if (!isAnswered(query, link, answers, limit, isEnough)) {
      return link.failedExchange(noAnswer);
    }
    status.raw[0] = *answers.lastRealTimeStatus();
    status.rawLength = 1;
    BuildParsedStatusESCPOS(&status, query.type);
  }
  result.status = status;
  return std::nullopt;
}

MaybeSetback refuseUnready(PortLink& link, const EscPosAnswers& answers, PrintResult& result) {
  link.drain();
  if (auto setback = askRealTimeStatus(link, answers, result, link.timeout())) {
    return setback;
  }
  const std::string why = whyNotReady(*result.status);
  return why.empty() ? std::nullopt : MaybeSetback({PrintObstacle::PrinterNotReady, why});
}

}  // namespace quordalvane
