#pragma once

#include <string>
#include <string_view>

#include "job/ProofKind.h"

namespace quordalvane {

/// The names of all proofs, for people: "auto, block, process-id, in-order or none".
std::string proofNames();

/// The printer's sign, for people: "it counts marks before and after each job".
std::string_view aboutOf(ProofKind kind);

}  // namespace quordalvane
