#pragma once

#include <optional>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// How a printer proves that it has printed a job, the strongest first; `docs/checked-block.md`
/// says what each of them can and cannot detect.
enum class ProofKind {
  Auto,       ///< asks the printer which of the others it gives
  Block,      ///< the checked block: the printer counts marks before and after the data
  ProcessId,  ///< the printer names four random characters that end the job
  InOrder,    ///< the printer answers a question that ends the job, in its turn
  None,       ///< no proof
};

/// "auto", "block", "process-id", "in-order", "none".
QUOR_EXPORT std::string_view nameOf(ProofKind kind);

/// The proof of that name; empty if there is none.
QUOR_EXPORT std::optional<ProofKind> proofNamed(std::string_view name);

}  // namespace quordalvane
