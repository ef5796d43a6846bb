// Measures waiting times: for a late reply, for a reply that is never sent, and for opening and
// closing a connection.

#include <sys/resource.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "bench/BareLink.h"
#include "bench/Groups.h"
#include "bench/OpenPort.h"
#include "bench/Peer.h"

namespace quordalvane::bench {
namespace {

using namespace std::chrono_literals;

constexpr double millisecond = 1e3;

/// Compares a port with a bare link, both with peers that answer late.
Row lateReplyRow(Heading heading, ZKEmulation emulation, std::chrono::microseconds delay,
                 void (*exchange)(BareLink&)) {
  constexpr int exchanges = 11;
  const Bound bound(Core::First);
  Peer peer(Core::First);
  Peer barePeer(Core::First);
  const auto endpoint = makeEndpoint(Medium::Tcp);
  OpenPort port(endpoint->device(), emulation);
  peer.answer(endpoint->accept(), delay);
  BareLink bare(endpoint->connect());
  barePeer.answer(endpoint->accept(), delay);
  const auto pairs =
      alternate([&] { return median(secondsOfEach(exchanges, [&] { port.getStatus(); })); },
                [&] { return median(secondsOfEach(exchanges, [&] { exchange(bare); })); });
  return comparedRow(std::move(heading), pairs, Best::Lowest, millisecond);
}

double processorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_THREAD, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct Silence {
  double seconds;
  double coreShare;  // the used share of a core, in percent
};

template <typename Wait>
Silence silenceOf(Wait wait) {
  const double before = processorSeconds();
  const double seconds = secondsOf(wait);
  return {.seconds = seconds, .coreShare = 100 * (processorSeconds() - before) / seconds};
}

/// Asks twice for a status, as a port does with a silent device. After each request, polls ten
/// times for an answer, for 0.1 s each time, and pauses 0.05 s after each poll.
void askSilentDevice(BareLink& bare) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    bare.write(lineStatusRequest);
    for (int look = 0; look < 10; ++look) {
      bare.poll(100);
      std::this_thread::sleep_for(50ms);
    }
  }
}

void askSilentDevice(OpenPort& port) {
  QuorPrinterStatus_2 status{};
  if (port->getParsedStatus(&status, 2)) {
    throw std::runtime_error("a silent device has answered");
  }
}

/// Returns the documented pauses of `open` and `close`: 0.1 s each. `close` pauses only on newer
/// systems.
double namedPauses(const ExternalAccessoryPort& port) {
  const bool closePauses = std::stof(port.platform().currentDevice().systemVersion()) >= 10;
  return closePauses ? 0.2 : 0.1;
}

Figures secondsBeyondThePauses(int rounds, Endpoint& endpoint) {
  Figures seconds;
  for (int round = 0; round < rounds; ++round) {
    const auto port = makePort(endpoint.device(), ZKEmulationQuorLine);
    const double all = secondsOf([&] {
      QuorPrinterStatus_2 status{};
      if (!port->open() || !port->getParsedStatus(&status, 2)) {
        throw std::runtime_error("no status");
      }
      port->close();
    });
    seconds.push_back(all - namedPauses(*port));
  }
  return seconds;
}

}  // namespace

Rows lateReplies() {
  return {
      lateReplyRow({"B10", "line-mode status, the reply 20 ms after the request", "<= 21 ms", "ms"},
                   ZKEmulationQuorLine, 20ms, exchangeLineStatus),
      lateReplyRow({"B10", "ESC/POS status, three replies of 1 ms each", "<= 5 ms", "ms"},
                   ZKEmulationESCPOS, 1ms, exchangeEscposStatus)};
}

Rows silentDevice() {
  const Bound bound(Core::First);
  const auto endpoint = makeEndpoint(Medium::Tcp);  // the system accepts connections by itself
  const auto ours = [&] {
    OpenPort port(endpoint->device(), ZKEmulationQuorLine);
    return silenceOf([&] { askSilentDevice(port); });
  };
  const auto limit = [&] {
    BareLink bare(endpoint->connect());
    return silenceOf([&] { askSilentDevice(bare); });
  };
  const auto pairs = alternate(ours, limit);
  return {comparedRow({"B11", "line-mode status of a silent device", "<= 1.01 x", "s"},
                      figuresOf(pairs, &Silence::seconds), Best::Lowest),
          comparedRow({"B11", "processor time meanwhile", "<= 1 % of a core", "% of a core"},
                      figuresOf(pairs, &Silence::coreShare), Best::Lowest)};
}

Rows openAndClose() {
  constexpr int rounds = 5;
  const Bound bound(Core::First);
  const auto endpoint = makeEndpoint(Medium::Tcp);
  Peer peer(Core::First);
  peer.answerAll(*endpoint);
  const auto pairs = alternate([&] { return median(secondsBeyondThePauses(rounds, *endpoint)); },
                               [&] {
                                 return median(secondsOfEach(rounds, [&] {
                                   BareLink bare(endpoint->connect());
                                   exchangeLineStatus(bare);
                                 }));
                               });
  ::close(endpoint->connect());  // a connection without a byte makes the peer's thread end
  return {comparedRow(
      {"B12", "open, status and close, beyond their named pauses", "<= limit + 1 ms", "ms"}, pairs,
      Best::Lowest, millisecond)};
}

}  // namespace quordalvane::bench
