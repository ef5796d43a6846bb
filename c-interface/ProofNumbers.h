#pragma once

#include <algorithm>
#include <cstdint>

#include <quordalvane/QuorIOPortC.h>

#include "job/ProofKind.h"

namespace quordalvane::c {

struct ProofNumber {
  std::int32_t number;
  ProofKind kind;
};

inline constexpr ProofNumber proofNumbers[] = {
    {QUOR_PROOF_NONE, ProofKind::None},        {QUOR_PROOF_AUTO, ProofKind::Auto},
    {QUOR_PROOF_BLOCK, ProofKind::Block},      {QUOR_PROOF_PROCESS_ID, ProofKind::ProcessId},
    {QUOR_PROOF_IN_ORDER, ProofKind::InOrder},
};

inline std::int32_t numberOf(ProofKind kind) {
  return std::ranges::find(proofNumbers, kind, &ProofNumber::kind)->number;
}

}  // namespace quordalvane::c
