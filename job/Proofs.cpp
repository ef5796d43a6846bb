// Which proof a job uses.

#include "job/AutoProof.h"
#include "job/EscPosBlock.h"
#include "job/InOrderProof.h"
#include "job/LineModeBlock.h"
#include "job/NoProof.h"
#include "job/ProcessIdProof.h"
#include "job/Proof.h"

namespace quordalvane {
namespace {

template <typename Kind>
std::unique_ptr<Proof> make(PortLink& link, PrintResult& result) {
  return std::make_unique<Kind>(link, result);
}

std::unique_ptr<Proof> makeUnasked(PortLink& link, PrintResult& result) {
  return std::make_unique<NoProof>("no confirmation was asked for", link, result);
}

std::unique_ptr<Proof> makeUnknown(PortLink& link, PrintResult& result) {
  return std::make_unique<NoProof>("line mode has no such proof", link, result);
}

/// A row a proof: how it is made in each emulation.
struct Row {
  ProofKind kind;
  std::string_view name;
  std::unique_ptr<Proof> (*inLineMode)(PortLink& link, PrintResult& result);
  std::unique_ptr<Proof> (*inEscPos)(PortLink& link, PrintResult& result);
};

constexpr Row rows[] = {
    {ProofKind::Auto, "auto", make<LineModeBlock>, make<AutoProof>},
    {ProofKind::Block, "block", make<LineModeBlock>, make<EscPosBlock>},
    {ProofKind::ProcessId, "process-id", makeUnknown, make<ProcessIdProof>},
    {ProofKind::InOrder, "in-order", makeUnknown, make<InOrderProof>},
    {ProofKind::None, "none", makeUnasked, makeUnasked},
};

const Row& rowOf(ProofKind kind) {
  return rows[static_cast<std::size_t>(kind)];
}

}  // namespace

std::string_view nameOf(ProofKind kind) {
  return rowOf(kind).name;
}

std::unique_ptr<Proof> makeProof(ProofKind kind, PortLink& link, PrintResult& result) {
  const ZKEmulation emulation = link.port().emulation();
  if (emulation == ZKEmulationUnknown && kind != ProofKind::None) {
    return std::make_unique<NoProof>("no job can be confirmed without a known emulation", link,
                                     result);
  }
  const Row& row = rowOf(kind);
  return emulation == ZKEmulationQuorLine ? row.inLineMode(link, result)
                                          : row.inEscPos(link, result);
}

}  // namespace quordalvane
