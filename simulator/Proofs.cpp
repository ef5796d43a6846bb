#include "simulator/Proofs.h"

#include <stdexcept>

#include "text/Quoted.h"

namespace quordalvane::simulator {
namespace {

struct Name {
  Proof proof;
  std::string_view text;
};

constexpr Name proofNames[] = {
    {Proof::Block, "block"},
    {Proof::ProcessId, "process-id"},
    {Proof::InOrder, "in-order"},
};

}  // namespace

Proofs Proofs::parse(std::string_view text) {
  Proofs proofs;
  if (text.empty() || text == "none") {
    return proofs;
  }
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find('+', begin), text.size());
    proofs.add(text.substr(begin, end - begin), text);
    begin = end + 1;
  }
  return proofs;
}

Proofs Proofs::all() {
  Proofs proofs;
  for (const Name& name : proofNames) {
    proofs.bits_ |= bit(name.proof);
  }
  return proofs;
}

void Proofs::add(std::string_view name, std::string_view text) {
  for (const Name& known : proofNames) {
    if (known.text == name) {
      bits_ |= bit(known.proof);
      return;
    }
  }
  throw std::invalid_argument(
      "the key \"proofs\" takes \"block\", \"process-id\" and \"in-order\", joined by +, or "
      "\"none\", not " +
      inQuotes(text));
}

std::string Proofs::text() const {
  std::string text;
  for (const Name& name : proofNames) {
    if (has(name.proof)) {
      text.append(text.empty() ? "" : "+").append(name.text);
    }
  }
  return text.empty() ? "none" : text;
}

}  // namespace quordalvane::simulator
