#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorProof.h>

namespace quordalvane {

/// How a printer proves that it has printed a job; `docs/checked-block.md` says what each proof can
/// and cannot detect. The numbers are those of the interface for C.
enum class ProofKind : std::int32_t {
  None = QUOR_PROOF_NONE,    ///< no proof
  Auto = QUOR_PROOF_AUTO,    ///< asks the printer which of the others it gives
  Block = QUOR_PROOF_BLOCK,  ///< the checked block: it counts marks before and after the data
  ProcessId = QUOR_PROOF_PROCESS_ID,  ///< it names four random characters that end the job
  InOrder = QUOR_PROOF_IN_ORDER,      ///< it answers a question that ends the job, in its turn
};

/// A proof in words.
struct ProofWords {
  ProofKind kind;          ///< the proof
  std::string_view name;   ///< as people and programs write it
  std::string_view about;  ///< the printer's sign: "it counts marks before and after each job"
};

/// Every proof: `Auto`, then the proofs that a printer can give, the strongest first, then `None`.
inline constexpr ProofWords proofWords[] = {
    {ProofKind::Auto, "auto", "it is asked for its proof"},
    {ProofKind::Block, "block", "it counts marks before and after each job"},
    {ProofKind::ProcessId, "process-id", "it names the characters that end each job"},
    {ProofKind::InOrder, "in-order", "it answers the question that ends each job, in its turn"},
    {ProofKind::None, "none", "it confirms no job, so that each is unconfirmed at best"},
};

/// The name of a proof.
QUOR_EXPORT std::string_view nameOf(ProofKind kind);

/// The proof of that name; empty if there is none.
QUOR_EXPORT std::optional<ProofKind> proofNamed(std::string_view name);

/// The proof of that number; empty if there is none.
std::optional<ProofKind> proofNumbered(std::int32_t number);

/// The printer's sign, for people.
std::string_view aboutOf(ProofKind kind);

/// The names of all proofs, for people: "auto, block, process-id, in-order or none".
std::string proofNames();

}  // namespace quordalvane
