#include "job/InOrderProof.h"

#include "job/PrintData.h"

namespace quordalvane {

/// A question before the data: answered at once by a printer that holds nothing.
MaybeSetback InOrderProof::prepare() {
  const std::uint64_t before = answers().inOrderCount();
  if (auto setback = link().send(inOrderRequest)) {
    return setback;
  }
  const auto isAnswered = [&](ByteView) { return answers().inOrderCount() > before; };
  isSure_ = link().await(isAnswered, link().timeout()) && answers().inOrderCount() == before + 1;
  asked_ = answers().inOrderCount();
  return std::nullopt;
}

MaybeSetback InOrderProof::makeQuestion(ByteView data, std::vector<std::uint8_t>& question) {
  if (!isSure_) {
    return Setback{PrintObstacle::NoProof,
                   "the printer did not answer exactly once to a question before the job"};
  }
  const auto inData = inOrderRequestsIn(data);
  if (!inData) {
    return Setback{PrintObstacle::NoProof,
                   "cannot be confirmed: the data itself may ask for in-order answers, and they "
                   "cannot be counted"};
  }
  asked_ += *inData + 1;
  question.assign(std::begin(inOrderRequest), std::end(inOrderRequest));
  return std::nullopt;
}

}  // namespace quordalvane
