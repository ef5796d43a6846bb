#include "platform/ProofKind.h"

#include <algorithm>
#include <iterator>

namespace quordalvane {
namespace {

/// Returns the row of the table in which `member` is `value`; null if there is no such row.
template <typename Value>
const ProofWords* rowWith(Value ProofWords::*member, Value value) {
  const auto* const row = std::ranges::find(proofWords, value, member);
  return row == std::end(proofWords) ? nullptr : row;
}

std::optional<ProofKind> kindOf(const ProofWords* row) {
  return row == nullptr ? std::nullopt : std::optional(row->kind);
}

}  // namespace

std::string_view nameOf(ProofKind kind) {
  return rowWith(&ProofWords::kind, kind)->name;
}

std::string_view aboutOf(ProofKind kind) {
  return rowWith(&ProofWords::kind, kind)->about;
}

std::optional<ProofKind> proofNamed(std::string_view name) {
  return kindOf(rowWith(&ProofWords::name, name));
}

std::optional<ProofKind> proofNumbered(std::int32_t number) {
  return kindOf(rowWith(&ProofWords::kind, static_cast<ProofKind>(number)));
}

std::string proofNames() {
  std::string names;
  for (const ProofWords& proof : proofWords) {
    names += &proof == std::begin(proofWords)     ? ""
             : &proof == std::end(proofWords) - 1 ? " or "
                                                  : ", ";
    names += proof.name;
  }
  return names;
}

}  // namespace quordalvane
