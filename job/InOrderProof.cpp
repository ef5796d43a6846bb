#include "job/InOrderProof.h"

#include "job/PrintData.h"

namespace quordalvane {
namespace {

// Answers that a printer owes follow one another at once.
constexpr auto quiet = std::chrono::seconds(1);

}  // namespace

InOrderProof::InOrderProof(PortLink& link, PrintResult& result)
    : EndSign(link, result), memory_(memoryOf(link.port().shared_from_this())) {}

/// A question before the data: answered at once by a printer that holds nothing.
MaybeSetback InOrderProof::prepare() {
  if (memory_.mayOweInOrder) {
    if (auto setback = hearOut()) {
      return setback;
    }
  }
  memory_.mayOweInOrder = true;
  asked_ = answers().inOrderCount() + 1;
  if (auto setback = link().send(inOrderRequest)) {
    return setback;
  }
  isSure_ = awaitAnother(link().timeout()) && answers().inOrderCount() == asked_;
  return std::nullopt;
}

/// An earlier job was left before all its questions were answered. This one's answer follows
/// theirs, and then there are no more.
MaybeSetback InOrderProof::hearOut() {
  const auto start = link().now();
  if (auto setback = link().send(inOrderRequest)) {
    return setback;
  }
  for (auto limit = std::chrono::nanoseconds(link().timeout());
       awaitAnother(limit) && link().now() - start < link().timeout(); limit = quiet) {
  }
  return std::nullopt;
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
