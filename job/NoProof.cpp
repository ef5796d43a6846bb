#include "job/NoProof.h"

#include <utility>

#include "job/DropCommand.h"

namespace quordalvane {

NoProof::NoProof(std::string why, PortLink& link, PrintResult& result)
    : Proof(link, result), why_(std::move(why)) {}

MaybeSetback NoProof::end(ByteView /*data*/) {
  return Setback{PrintObstacle::NoProof, why_};
}

ByteView NoProof::dropCommand() const {
  return dropAll;
}

}  // namespace quordalvane
