#include "job/AutoProof.h"

#include "job/DropCommand.h"
#include "job/NoProof.h"
#include "job/ProofSearch.h"
#include "job/RealTimeStatus.h"

namespace quordalvane {

AutoProof::AutoProof(PortLink& link, PrintResult& result)
    : Proof(link, result), memory_(memoryOf(link.port().shared_from_this())) {}

MaybeSetback AutoProof::begin() {
  if (memory_.foundProof.value_or(ProofKind::None) == ProofKind::None) {
    if (auto setback = find()) {
      return setback;
    }
  }
  const ProofKind kind = *memory_.foundProof;
  if (kind == ProofKind::None) {
    chosen_ = std::make_unique<NoProof>(
        "the printer was asked how it confirms jobs and did not answer within 1 s; no confirmation",
        clearBuffer, link(), result());
  } else {
    chosen_ = makeProof(kind, link(), result());
  }
  chosen_->setWaiting(waiting());
  result().proof = kind;
  return chosen_->begin();
}

/// Checks that the printer is ready, and then asks which proof it gives. If an earlier job found no
/// proof, the printer is asked again only if it sends, during the check, an answer of a kind that
/// can prove a job.
MaybeSetback AutoProof::find() {
  if (auto setback = refuseUnready(link(), answers_, result())) {
    return setback;
  }
  return !memory_.foundProof || answers_.isAnyProof() ? ask() : std::nullopt;
}

MaybeSetback AutoProof::ask() {
  result().hasAskedForProof = true;
  FoundProof found;
  if (auto setback = findProof(link(), answers_, found)) {
    return setback;
  }
  memory_.foundProof = found.kind;
  // The printer may still answer the queries of earlier jobs, so the kinds of proof that are
  // already in `owed` remain there.
  memory_.owed.merge(found.owed);
  return std::nullopt;
}

void AutoProof::leave() {
  if (chosen_) {
    chosen_->leave();
  }
}

ByteView AutoProof::dropCommand() const {
  return chosen_ ? chosen_->dropCommand() : ByteView(dropAll);
}

void AutoProof::bytesWritten(ByteView bytes) {
  if (chosen_) {
    chosen_->bytesWritten(bytes);
  }
}

void AutoProof::bytesRead(ByteView bytes) {
  if (chosen_) {
    chosen_->bytesRead(bytes);
  } else {
    answers_.feed(bytes);
  }
}

}  // namespace quordalvane
