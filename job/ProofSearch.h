#pragma once

#include <set>

#include "job/EscPosAnswers.h"
#include "job/PortLink.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// The result of asking a printer which proof it gives.
struct FoundProof {
  ProofKind kind = ProofKind::None;  ///< the strongest proof that the printer gives
  std::set<ProofKind> owed;  ///< the kinds of proof whose queries the printer may still answer
};

/// Finds out which proof a printer gives, and stores the result in `found`. The printer must use
/// ESC/POS and must be on line. No paper moves. A printer that gives a proof answers at once; after
/// a second of silence the search ends. The caller must feed `answers` with all bytes that are read
/// on the link. Returns a setback with the reason if the link does not take the query.
MaybeSetback findProof(PortLink& link, const EscPosAnswers& answers, FoundProof& found);

}  // namespace quordalvane
