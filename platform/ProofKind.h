#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorProof.h>

namespace quordalvane {

/// How a printer proves that it has printed a job. `docs/checked-block.md` describes the limits of
/// each proof. The numbers are those of the C interface.
enum class ProofKind : std::int32_t {
  None = QUOR_PROOF_NONE,  ///< no proof
  Auto = QUOR_PROOF_AUTO,  ///< the printer is asked which of the other proofs it gives
  Block =
      QUOR_PROOF_BLOCK,  ///< the checked block: the printer counts the marks that enclose the data
  /// A command with four random characters follows the data; the printer sends these characters
  /// back when it has processed the data.
  ProcessId = QUOR_PROOF_PROCESS_ID,
  /// A query follows the data; the printer answers the query when it has processed the data.
  InOrder = QUOR_PROOF_IN_ORDER,
};

/// The name and the description of a proof.
struct ProofWords {
  ProofKind kind;          ///< the proof
  std::string_view name;   ///< the name of the proof, as people and programs write it
  std::string_view about;  ///< how the printer proves a job, as a sentence
};

/// A table of all proofs. `Auto` is first and `None` is last. Between them are the proofs that a
/// printer can give, beginning with the strongest.
inline constexpr ProofWords proofWords[] = {
    {ProofKind::Auto, "auto", "the printer is asked how it can confirm jobs"},
    {ProofKind::Block, "block",
     "the printer counts the marks that are sent before and after each job"},
    {ProofKind::ProcessId, "process-id", "the printer returns the characters that end each job"},
    {ProofKind::InOrder, "in-order",
     "the printer answers a question after each job, when it has processed the job"},
    {ProofKind::None, "none", "the printer confirms no job, so each job is unconfirmed at best"},
};

/// Returns the name of a proof.
QUOR_EXPORT std::string_view nameOf(ProofKind kind);

/// Returns the proof with this name; null if no proof has it.
QUOR_EXPORT std::optional<ProofKind> proofNamed(std::string_view name);

/// Returns the proof with this number; null if no proof has it.
std::optional<ProofKind> proofNumbered(std::int32_t number);

/// Returns, as a text for people, how the printer proves a job.
std::string_view aboutOf(ProofKind kind);

/// Returns the names of all proofs as a text for people: "auto, block, process-id, in-order or
/// none".
std::string proofNames();

}  // namespace quordalvane
