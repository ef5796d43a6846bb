#include "job/ProofSearch.h"

#include "job/InOrderProof.h"
#include "job/ProcessIdProof.h"

namespace quordalvane {
namespace {

// A printer that knows one of the three queries (see `questionWith`) answers it at once.
constexpr auto longestSilence = std::chrono::seconds(1);
constexpr auto grace = std::chrono::milliseconds(100);

constexpr std::uint8_t resetAndMark[] = {0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00,
                                         0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00};
constexpr std::uint8_t countOfOneMark = 1;

/// Returns three queries, which are sent in one write: a process ID that the printer sends back, a
/// mark that the printer counts and reports, and a request for an in-order status. The three
/// answers have different forms; the in-order status arrives last.
std::vector<std::uint8_t> questionWith(const JobId& id) {
  auto question = processIdCommand(id);
  question.insert(question.end(), std::begin(resetAndMark), std::end(resetAndMark));
  question.insert(question.end(), std::begin(inOrderRequest), std::end(inOrderRequest));
  return question;
}

}  // namespace

MaybeSetback findProof(PortLink& link, const EscPosAnswers& answers, FoundProof& found) {
  const JobId id = randomProcessId(link.port().platform());
  const std::uint64_t before = answers.inOrderCount();
  if (auto setback = link.send(questionWith(id))) {
    return setback;
  }
  const auto strongest = [&] {
    return answers.lastReport() == countOfOneMark ? ProofKind::Block
           : answers.hasNamed(id)                 ? ProofKind::ProcessId
           : answers.inOrderCount() > before      ? ProofKind::InOrder
                                                  : ProofKind::None;
  };
  const auto isAny = [&](ByteView) { return strongest() != ProofKind::None; };
  const auto isDecided = [&](ByteView) {
    return strongest() == ProofKind::Block || answers.inOrderCount() > before;
  };
  if (link.await(isAny, longestSilence)) {
    link.await(isDecided, grace);
  }
  found.kind = strongest();
  if (answers.inOrderCount() == before) {
    found.owed.insert(ProofKind::InOrder);
  }
  return std::nullopt;
}

}  // namespace quordalvane
