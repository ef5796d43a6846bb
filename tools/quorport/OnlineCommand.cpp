// The online test.

#include <algorithm>

#include "tools/quorport/Commands.h"
#include "tools/quorport/HeardBytes.h"
#include "tools/quorport/StatusAnswer.h"

namespace quordalvane::tool {
namespace {

using Port = ExternalAccessoryPort;

/// Where the status blocks end that the bytes begin with; behind the last byte if that block is not
/// whole. A block says its length in its first byte.
std::size_t endOfBlocks(const ByteBuffer& bytes) {
  constexpr std::uint8_t header = 0x80;
  std::size_t next = 0;
  while (next < bytes.size() && bytes[next] > header && bytes[next] < header + 64) {
    next += std::size_t{bytes[next]} - header;
  }
  return next;
}

bool areWholeBlocks(const ByteBuffer& bytes) {
  return endOfBlocks(bytes) == bytes.size();
}

/// The byte that answers a query in ESC/POS; no block begins with one.
bool isStatusByte(std::uint8_t byte) {
  return (byte & 0x93) == 0x12;
}

/// In both emulations the first question is answered by a block; the queries of ESC/POS are
/// answered behind it.
bool areWholeAnswers(const ByteBuffer& bytes, ZKEmulation emulation) {
  if (emulation != ZKEmulationESCPOS) {
    return areWholeBlocks(bytes);
  }
  const std::size_t end = endOfBlocks(bytes);
  return end < bytes.size() &&
         std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(end), bytes.end(), isStatusByte);
}

/// Waits until the printer falls silent behind a whole answer. One that never does is not waited
/// for.
void hearOut(Port& port, const HeardBytes& heard) {
  constexpr int patience = 20;
  for (int i = 0; i < patience; ++i) {
    const auto data = port.read(512);
    if (!data || (data->empty() && areWholeAnswers(heard.bytes(), port.emulation()))) {
      return;
    }
  }
}

/// Whether the port may have taken a part of the first answer for the second: it throws away what
/// has come of the first when it asks again, and a late one, or one in bits, comes after that.
bool isMixedUpInLineMode(const HeardBytes& heard, bool answered) {
  return answered && !std::ranges::all_of(heard.reads(), areWholeBlocks);
}

/// The same in ESC/POS, where the port refuses most parts of a block. One that heard nothing at
/// last gave up, and has mixed up nothing.
bool isMixedUpInESCPOS(const HeardBytes& heard, bool answered) {
  constexpr std::size_t queries = 3;
  const ByteBuffer bytes = heard.bytes();
  return answered ? endOfBlocks(bytes) + queries != bytes.size()
                  : !heard.reads().empty() && !heard.reads().back().empty();
}

/// Where the two answers of the online test were mixed up, the printer is heard out and asked once
/// more.
bool isOnline(Printer& printer) {
  Port& port = *printer.port();
  const HeardBytes heard(printer.port());
  bool online = false;
  const bool answered =
      printer.exchange([&online](Port& asked) { return asked.getOnlineStatus(&online); });
  if (port.emulation() == ZKEmulationESCPOS ? isMixedUpInESCPOS(heard, answered)
                                            : isMixedUpInLineMode(heard, answered)) {
    hearOut(port, heard);
    return askForStatus(printer, 2).offline == 0;
  }
  if (!answered) {
    throw failureWithoutStatus(printer, "the printer did not answer");
  }
  return online;
}

}  // namespace

Report online(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const bool online = isOnline(printer);
  Report report = done(online ? "on line" : "off line");
  report.json["online"] = online;
  report.code = online ? ExitCode::Done : ExitCode::NotReady;
  return report;
}

}  // namespace quordalvane::tool
