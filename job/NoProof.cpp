#include "job/NoProof.h"

#include <utility>

namespace quordalvane {

NoProof::NoProof(std::string why, ByteView dropCommand, PortLink& link, PrintResult& result)
    : Proof(link, result), why_(std::move(why)), dropCommand_(dropCommand) {}

MaybeSetback NoProof::begin() {
  result().proof = ProofKind::None;
  return std::nullopt;
}

MaybeSetback NoProof::end(ByteView /*data*/) {
  return Setback{PrintObstacle::NoProof, why_};
}

}  // namespace quordalvane
