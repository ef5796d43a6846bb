// Chooses and creates the proof of a job: the object that finds out whether the printer has printed
// the job.

#include <algorithm>
#include <memory>

#include "job/AutoProof.h"
#include "job/DropCommand.h"
#include "job/EscPosBlock.h"
#include "job/InOrderProof.h"
#include "job/LineModeBlock.h"
#include "job/NoProof.h"
#include "job/ProcessIdProof.h"
#include "job/Proof.h"
#include "platform/ProofKind.h"

namespace quordalvane {
namespace {

template <typename Kind>
std::unique_ptr<Proof> make(PortLink& link, PrintResult& result) {
  return std::make_unique<Kind>(link, result);
}

std::unique_ptr<Proof> makeUnasked(PortLink& link, PrintResult& result) {
  return std::make_unique<NoProof>("no confirmation was requested", dropAll, link, result);
}

std::unique_ptr<Proof> makeUnknown(PortLink& link, PrintResult& result) {
  return std::make_unique<NoProof>("in line mode no job can be confirmed by the chosen proof",
                                   dropAll, link, result);
}

using Maker = std::unique_ptr<Proof> (*)(PortLink& link, PrintResult& result);

/// A kind of proof, and for each emulation the function that creates a proof of this kind.
struct Row {
  ProofKind kind;
  Maker inLineMode;
  Maker inEscPos;
};

constexpr Row rows[] = {
    {ProofKind::Auto, make<LineModeBlock>, make<AutoProof>},
    {ProofKind::Block, make<LineModeBlock>, make<EscPosBlock>},
    {ProofKind::ProcessId, makeUnknown, make<ProcessIdProof>},
    {ProofKind::InOrder, makeUnknown, make<InOrderProof>},
    {ProofKind::None, makeUnasked, makeUnasked},
};

}  // namespace

ProofKind proofOf(ExternalAccessoryPort& port) {
  for (const auto& accessory : port.platform().sharedAccessoryManager().connectedAccessories()) {
    if (accessory->connectionID() == port.connectionID()) {
      return accessory->proof();
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
  const Row& row = *std::ranges::find(rows, kind, &Row::kind);
  return emulation == ZKEmulationQuorLine ? row.inLineMode(link, result)
                                          : row.inEscPos(link, result);
}

}  // namespace quordalvane
