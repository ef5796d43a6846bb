// How much longer a status query takes than the bare exchange of its bytes.

#include <string>
#include <utility>

#include "bench/BareLink.h"
#include "bench/Groups.h"
#include "bench/OpenPort.h"
#include "bench/Peer.h"
#include "bench/Peers.h"
#include "tests/counts/SystemCalls.h"

namespace quordalvane::bench {
namespace {

constexpr double microsecond = 1e6;
constexpr double millisecond = 1e3;

/// A port and a bare link, each with an answering peer of its own.
struct Sides {
  Sides(Medium medium, ZKEmulation emulation, Core peerCore)
      : peer(peerCore),
        barePeer(peerCore),
        endpoint(makeEndpoint(medium)),
        bareEndpoint(makeEndpoint(medium)),
        port(endpoint->device(), emulation),
        bare(bareEndpoint->connect()) {
    peer.answer(endpoint->accept());
    barePeer.answer(bareEndpoint->accept());
  }

  Peer peer;
  Peer barePeer;
  const std::unique_ptr<Endpoint> endpoint;
  const std::unique_ptr<Endpoint> bareEndpoint;
  OpenPort port;
  BareLink bare;
};

Row lineStatusRow(Heading heading, Medium medium, Core peerCore) {
  constexpr int exchanges = 2000;
  const Bound bound(Core::First);
  Sides sides(medium, ZKEmulationQuorLine, peerCore);
  const auto pairs = alternate(
      [&] { return median(secondsOfEach(exchanges, [&] { sides.port.getStatus(); })); },
      [&] { return median(secondsOfEach(exchanges, [&] { exchangeLineStatus(sides.bare); })); });
  return comparedRow(std::move(heading), pairs, Best::Lowest, microsecond);
}

struct Cycles {
  double each;
  double longest;
};

template <typename Cycle>
Cycles runCycles(Cycle cycle) {
  constexpr int cycles = 1000;
  const Figures seconds = secondsOfEach(cycles, cycle);
  return {.each = median(seconds), .longest = highest(seconds)};
}

}  // namespace

Rows lineStatusOverTcp() {
  return {lineStatusRow({"B1", "line-mode status over TCP", "<= 1.3 x", "us"}, Medium::Tcp,
                        Core::First)};
}

Rows escposStatusOverTcp() {
  const Bound bound(Core::First);
  Sides sides(Medium::Tcp, ZKEmulationESCPOS, Core::First);
  const auto pairs =
      alternate([&] { return runCycles([&] { sides.port.getStatus(); }); },
                [&] { return runCycles([&] { exchangeEscposStatus(sides.bare); }); });
  Row each = comparedRow({"B2", "ESC/POS status over TCP, back to back", "<= 1.3 x", "us"},
                         figuresOf(pairs, &Cycles::each), Best::Lowest, microsecond);
  each.peers = measurePeers();
  return {std::move(each),
          comparedRow({"B2", "the longest of 1,000 such cycles", "<= 20 ms", "ms"},
                      figuresOf(pairs, &Cycles::longest), Best::Lowest, millisecond)};
}

Rows lineStatusElsewhere() {
  return {lineStatusRow({"B3", "line-mode status over a Unix socket", "<= 1.4 x", "us"},
                        Medium::Local, Core::First),
          lineStatusRow({"B3", "line-mode status over a pseudo-terminal", "<= 1.2 x", "us"},
                        Medium::Terminal, Core::Second)};
}

Rows systemCalls() {
  Sides sides(Medium::Tcp, ZKEmulationQuorLine, Core::First);
  sides.port.getStatus();
  const auto ours = systemCallsOf([&] { sides.port.getStatus(); });
  const auto limit = systemCallsOf([&] { exchangeLineStatus(sides.bare); });
  if (!ours || !limit) {
    return {};
  }
  return {{.heading = {"B14", "system calls of a line-mode status over TCP", "<= 7", "calls"},
           .ours = static_cast<double>(ours->size()),
           .limit = static_cast<double>(limit->size())}};
}

}  // namespace quordalvane::bench
