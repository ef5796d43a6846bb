// Which proof a job uses.

#include "job/EscPosBlock.h"
#include "job/LineModeBlock.h"
#include "job/NoProof.h"
#include "job/Proof.h"

namespace quordalvane {

std::unique_ptr<Proof> makeProof(bool isChecked, PortLink& link, PrintResult& result) {
  if (!isChecked) {
    return std::make_unique<NoProof>(
        "sent without a checked block; nothing proves that it was printed", link, result);
  }
  switch (link.port().emulation()) {
    case ZKEmulationQuorLine:
      return std::make_unique<LineModeBlock>(link, result);
    case ZKEmulationESCPOS:
      return std::make_unique<EscPosBlock>(link, result);
    case ZKEmulationUnknown:
      break;
  }
  return std::make_unique<NoProof>("no job can be confirmed without a known emulation", link,
                                   result);
}

}  // namespace quordalvane
