#include "job/InOrderProof.h"

#include "job/HearOut.h"
#include "job/PrintData.h"

namespace quordalvane {

InOrderProof::InOrderProof(PortLink& link, PrintResult& result)
    : EndSign(link, result), memory_(memoryOf(link.port().shared_from_this())) {}

/// Sends a query before the data. A printer that holds no data answers the query at once.
MaybeSetback InOrderProof::prepare() {
  const auto count = [this] { return answers().inOrderCount(); };
  if (memory_.owed.contains(ProofKind::InOrder) && !hearOut(link(), inOrderRequest, count)) {
    return std::nullopt;  // `isSure_` remains false: the job is printed but cannot be confirmed
  }
  memory_.owed.insert(ProofKind::InOrder);
  asked_ = count() + 1;
  if (auto setback = link().send(inOrderRequest)) {
    return setback;
  }
  isSure_ = link().await([&](ByteView) { return count() >= asked_; }, link().timeout()) &&
            count() == asked_;
  return std::nullopt;
}

MaybeSetback InOrderProof::makeQuestion(ByteView data, std::vector<std::uint8_t>& question) {
  link().drain();
  const auto inData = inOrderRequestsIn(data);
  if (!isSure_ || (inData && answers().inOrderCount() > asked_ + *inData)) {
    return Setback{PrintObstacle::NoProof,
                   "not every question to the printer had exactly one answer"};
  }
  if (!inData) {
    return Setback{
        PrintObstacle::NoProof,
        "cannot be confirmed: the data may contain requests for in-order answers, and the "
        "number of these requests is unknown"};
  }
  asked_ += *inData + 1;
  question.assign(std::begin(inOrderRequest), std::end(inOrderRequest));
  return std::nullopt;
}

/// After the sign that the job was printed, sends one more query and waits for its answer. If the
/// sign was only a stray byte, the true sign arrives during this wait.
MaybeSetback InOrderProof::end(ByteView data) {
  if (auto setback = EndSign::end(data)) {
    return setback;
  }
  ++asked_;
  auto setback = askAndAwait(inOrderRequest);
  if (!setback) {
    memory_.owed.erase(ProofKind::InOrder);
  }
  return setback;
}

}  // namespace quordalvane
