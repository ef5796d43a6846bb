// Which proof a job uses.

#include <algorithm>
#include <iterator>

#include "job/AutoProof.h"
#include "job/DropCommand.h"
#include "job/EscPosBlock.h"
#include "job/InOrderProof.h"
#include "job/LineModeBlock.h"
#include "job/NoProof.h"
#include "job/ProcessIdProof.h"
#include "job/Proof.h"
#include "job/ProofTexts.h"

namespace quordalvane {
namespace {

template <typename Kind>
std::unique_ptr<Proof> make(PortLink& link, PrintResult& result) {
  return std::make_unique<Kind>(link, result);
}

std::unique_ptr<Proof> makeUnasked(PortLink& link, PrintResult& result) {
  return std::make_unique<NoProof>("no confirmation was asked for", dropAll, link, result);
}

std::unique_ptr<Proof> makeUnknown(PortLink& link, PrintResult& result) {
  return std::make_unique<NoProof>("line mode has no such proof", dropAll, link, result);
}

/// A row a proof: its texts, and how it is made in each emulation.
struct Row {
  ProofKind kind;
  std::string_view name;
  std::string_view about;
  std::unique_ptr<Proof> (*inLineMode)(PortLink& link, PrintResult& result);
  std::unique_ptr<Proof> (*inEscPos)(PortLink& link, PrintResult& result);
};

constexpr std::string_view confirmsNothing =
    "it confirms no job, so that each is unconfirmed at best";

constexpr Row rows[] = {
    {ProofKind::Auto, "auto", "it is asked for its proof", make<LineModeBlock>, make<AutoProof>},
    {ProofKind::Block, "block", "it counts marks before and after each job", make<LineModeBlock>,
     make<EscPosBlock>},
    {ProofKind::ProcessId, "process-id", "it names the characters that end each job", makeUnknown,
     make<ProcessIdProof>},
    {ProofKind::InOrder, "in-order", "it answers the question that ends each job, in its turn",
     makeUnknown, make<InOrderProof>},
    {ProofKind::None, "none", confirmsNothing, makeUnasked, makeUnasked},
};

const Row& rowOf(ProofKind kind) {
  return rows[static_cast<std::size_t>(kind)];
}

}  // namespace

std::string_view nameOf(ProofKind kind) {
  return rowOf(kind).name;
}

std::string_view aboutOf(ProofKind kind) {
  return rowOf(kind).about;
}

std::string proofNames() {
  std::string names;
  for (const Row& row : rows) {
    names += &row == std::begin(rows) ? "" : &row == std::end(rows) - 1 ? " or " : ", ";
    names += row.name;
  }
  return names;
}

std::optional<ProofKind> proofNamed(std::string_view name) {
  const auto* const row = std::find_if(std::begin(rows), std::end(rows), [&](const Row& candidate) {
    return candidate.name == name;
  });
  return row == std::end(rows) ? std::nullopt : std::optional(row->kind);
}

ProofKind proofOf(ExternalAccessoryPort& port) {
  for (const auto& accessory : port.platform().sharedAccessoryManager().connectedAccessories()) {
    if (accessory->connectionID() == port.connectionID()) {
      return proofNamed(accessory->proof()).value_or(ProofKind::Auto);
    }
  }
  return ProofKind::Auto;
}

std::unique_ptr<Proof> makeProof(ProofKind kind, PortLink& link, PrintResult& result) {
  const ZKEmulation emulation = link.port().emulation();
  if (emulation == ZKEmulationUnknown && kind != ProofKind::None) {
    return std::make_unique<NoProof>("no job can be confirmed without a known emulation", dropAll,
                                     link, result);
  }
  const Row& row = rowOf(kind);
  return emulation == ZKEmulationQuorLine ? row.inLineMode(link, result)
                                          : row.inEscPos(link, result);
}

}  // namespace quordalvane
