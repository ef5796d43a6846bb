// The online test.

#include <algorithm>

#include "tools/quorport/Commands.h"
#include "tools/quorport/HeardBytes.h"
#include "tools/quorport/Printer.h"

namespace quordalvane::tool {
namespace {

using Port = ExternalAccessoryPort;

/// A block says its length in its first byte.
bool areWholeStatusBlocks(const ByteBuffer& bytes) {
  constexpr std::uint8_t header = 0x80;
  std::size_t next = 0;
  while (next < bytes.size() && bytes[next] > header && bytes[next] < header + 64) {
    next += std::size_t{bytes[next]} - header;
  }
  return next == bytes.size();
}

/// Waits until the printer falls silent behind a whole answer. One that never does is not waited
/// for.
void hearOut(Port& port, const HeardBytes& heard) {
  constexpr int patience = 20;
  for (int i = 0; i < patience; ++i) {
    const auto data = port.read(512);
    if (!data || (data->empty() && areWholeStatusBlocks(heard.bytes()))) {
      return;
    }
  }
}

/// The online test has the printer answer twice, and the port throws away what has come of the
/// first answer when it asks again. Where an answer came in bits, the rest of the first may have
/// been taken for the second: then the printer is heard out and asked once more.
bool isOnline(Port& port, bool& online) {
  const HeardBytes heard(port.shared_from_this());
  const bool answered = port.getOnlineStatus(&online);
  if (!answered || port.emulation() != ZKEmulationQuorLine ||
      std::ranges::all_of(heard.reads(), areWholeStatusBlocks)) {
    return answered;
  }
  hearOut(port, heard);
  QuorPrinterStatus_2 status{};
  const bool answeredAgain = port.getParsedStatus(&status, 2);
  online = status.offline == 0;
  return answeredAgain;
}

}  // namespace

Report online(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  bool online = false;
  if (!printer.exchange([&](Port& port) { return isOnline(port, online); })) {
    throw printer.failure("the printer did not answer");
  }
  Report report = done(online ? "on line" : "off line");
  report.json["online"] = online;
  report.code = online ? ExitCode::Done : ExitCode::NotReady;
  return report;
}

}  // namespace quordalvane::tool
