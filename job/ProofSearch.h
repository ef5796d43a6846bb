#pragma once

#include <set>

#include "job/EscPosAnswers.h"
#include "job/PortLink.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// The answer of a printer that was asked for its proof.
struct FoundProof {
  ProofKind kind = ProofKind::None;  ///< the strongest that it gives
  std::set<ProofKind> owed;          ///< those whose questions may still be answered
};

/// Asks an ESC/POS printer that is on line which proof it gives; nothing of that moves paper. A
/// printer that knows any answers within a round trip; silence is given up after a second.
/// `answers` hears all that is read on the link. A setback if the link does not take the question.
MaybeSetback findProof(PortLink& link, const EscPosAnswers& answers, FoundProof& found);

}  // namespace quordalvane
