#include "job/InOrderProof.h"

#include "job/PrintData.h"

namespace quordalvane {
namespace {

// Answers that a printer owes follow one another at once.
constexpr auto quiet = std::chrono::seconds(1);

// A printer that goes on and on is not heard out.
constexpr std::uint64_t mostOwed = 1000;

}  // namespace

InOrderProof::InOrderProof(PortLink& link, PrintResult& result)
    : EndSign(link, result), memory_(memoryOf(link.port().shared_from_this())) {}

/// A question before the data: answered at once by a printer that holds nothing.
MaybeSetback InOrderProof::prepare() {
  if (memory_.mayOweInOrder && !hearOut()) {
    return std::nullopt;  // not sure: the job is printed, and not confirmed
  }
  memory_.mayOweInOrder = true;
  asked_ = answers().inOrderCount() + 1;
  if (auto setback = link().send(inOrderRequest)) {
    return setback;
  }
  isSure_ = awaitAnother(link().timeout()) && answers().inOrderCount() == asked_;
  return std::nullopt;
}

/// An earlier job was left before all its questions were answered. The answers follow one another
/// at once when the printer has printed what is before them: if two questions in a row have one
/// answer each, nothing is owed. One alone could be answered by a stray byte.
bool InOrderProof::hearOut() {
  constexpr int enough = 2;
  constexpr int most = 6;
  int clean = 0;
  for (int round = 0; round < most && clean < enough; ++round) {
    const std::uint64_t before = answers().inOrderCount();
    if (link().send(inOrderRequest) || !awaitAnother(link().timeout())) {
      return false;
    }
    while (awaitAnother(quiet) && answers().inOrderCount() < before + mostOwed) {
    }
    clean = answers().inOrderCount() == before + 1 ? clean + 1 : 0;
  }
  return clean == enough;
}

bool InOrderProof::awaitAnother(std::chrono::nanoseconds limit) {
  const std::uint64_t before = answers().inOrderCount();
  return link().await([&](ByteView) { return answers().inOrderCount() > before; }, limit);
}

MaybeSetback InOrderProof::makeQuestion(ByteView data, std::vector<std::uint8_t>& question) {
  link().drain();
  const auto inData = inOrderRequestsIn(data);
  if (!isSure_ || (inData && answers().inOrderCount() > asked_ + *inData)) {
    return Setback{PrintObstacle::NoProof,
                   "the printer did not answer exactly once to a question before the job"};
  }
  if (!inData) {
    return Setback{PrintObstacle::NoProof,
                   "cannot be confirmed: the data itself may ask for in-order answers, and they "
                   "cannot be counted"};
  }
  asked_ += *inData + 1;
  question.assign(std::begin(inOrderRequest), std::end(inOrderRequest));
  return std::nullopt;
}

/// Asks once more after the sign. If that was a stray byte, the true one is still awaited.
MaybeSetback InOrderProof::end(ByteView data) {
  if (auto setback = EndSign::end(data)) {
    return setback;
  }
  ++asked_;
  auto setback = askAndAwait(inOrderRequest);
  memory_.mayOweInOrder = setback.has_value();
  return setback;
}

}  // namespace quordalvane
