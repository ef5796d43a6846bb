#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tests/simulation/Case.h"

namespace quordalvane::simulation {

/// A job whose parts are found again on the paper, whatever the printer prints between them.
struct Receipt {
  ByteBuffer data;
  std::vector<ByteBuffer> parts;  ///< in the order in which they are printed
};

/// ESC/POS jobs that one port prints with the same proof. The printer gives some of the proofs, or
/// no proof.
struct ProofCase {
  Case common;
  std::string gives;                        ///< the proofs that the printer gives
  std::optional<ByteBuffer> ofAnotherHost;  ///< data that another host left in the printer
  std::vector<Receipt> receipts;

  /// Nothing goes wrong, and every time-out is long enough, so every job must be confirmed.
  bool isHonest = false;
};

/// All proofs that can be chosen for a job: `Auto` and those that a printer can give.
std::vector<ProofKind> everyProof();

/// The case of a seed.
ProofCase makeProofCase(std::uint64_t seed);

/// Whether the printer gives `proof`; for Auto, whether it gives any proof.
bool gives(const ProofCase& given, ProofKind proof);

/// Whether all parts of the receipt are on the paper, in their order.
bool isOn(const ByteBuffer& paper, const Receipt& receipt);

/// Whether no part of the receipt is on the paper.
bool isNotOn(const ByteBuffer& paper, const Receipt& receipt);

std::ostream& operator<<(std::ostream& out, const ProofCase& given);

}  // namespace quordalvane::simulation
