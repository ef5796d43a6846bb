// The commands that are one exchange with the printer, but for the status.

#include "job/Words.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/HeardBytes.h"
#include "tools/quorport/Hex.h"
#include "tools/quorport/StatusAnswer.h"

namespace quordalvane::tool {
namespace {

using Port = ExternalAccessoryPort;

std::string spaced(const std::string& hex) {
  return hex.substr(0, 2) + " " + hex.substr(2);
}

// In ESC/POS the port takes the first bytes that come for the text: a status byte that comes late,
// or the beginning of the text alone. A whole one has this head and ends in a zero.
bool isWholeText(const ByteBuffer& reply) {
  constexpr std::uint8_t head = 0x5f;
  return !reply.empty() && reply.front() == head && reply.back() == 0;
}

bool retrieveWholeFirmware(Port& port) {
  const HeardBytes heard(port.shared_from_this());
  try {
    return port.retrieveFirmwareInformation() &&
           (port.emulation() != ZKEmulationESCPOS || isWholeText(heard.reads().back()));
  } catch (const std::out_of_range&) {
    return false;  // a single byte, which has no text
  }
}

// Where the link stands, the port may not have asked: it looks whether the printer is on line
// first.
Failure whyNoFirmware(Printer& printer) {
  bool isOnline = true;
  const auto ask = [&isOnline](Port& port) { return port.getOnlineStatus(&isOnline); };
  if (!printer.isLinkLost() && printer.exchange(ask) && !isOnline) {
    return {ExitCode::NotReady, "the printer is off line, and is not asked for its firmware then"};
  }
  return failureWithoutStatus(printer, "the printer did not say its firmware");
}

}  // namespace

Report cancel(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  if (!printer.exchange([](Port& port) { return port.startDataCancel(); })) {
    throw printer.failure("the link did not take the command whole");
  }
  return done("The printer was told to drop what it has not yet printed.");
}

Report firmware(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  if (!printer.exchange(retrieveWholeFirmware)) {
    throw whyNoFirmware(printer);
  }
  const std::string text = printer.port()->firmwareInformation().value_or("");
  Report report = done(printable(text));
  report.json["firmware"] = text;
  return report;
}

Report dipswitch(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  if (!printer.exchange([](Port& port) { return port.retrieveDipSwitchInformation(); })) {
    throw printer.failure("the printer did not say how its DIP switches are set");
  }
  Report report = done("");
  report.text.clear();
  report.json["banks"] = Json::array();
  for (const ByteBuffer& bank : printer.port()->dipSwitchInformation()) {
    const std::string hex = hexOf(bank);
    report.json["banks"].push_back(hex);
    report.text +=
        "bank " + std::to_string(report.json["banks"].size()) + ": " + spaced(hex) + " (hex)\n";
  }
  return report;
}

Report buttonSecurity(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const std::int64_t milliseconds =
      printer.exchange([](Port& port) { return port.retrieveButtonSecurityTimeout(); });
  if (milliseconds < 0) {
    throw printer.failure("the printer did not say its button-security time-out");
  }
  Report report =
      done(milliseconds == 0 ? "off" : grouped(static_cast<std::uint64_t>(milliseconds)) + " ms");
  report.json["milliseconds"] = milliseconds;
  return report;
}

Report disconnect(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const bool dropped = printer.exchange([&printer](Port& port) {
    try {
      return port.disconnect();
    } catch (const std::out_of_range&) {
      throw printer.failure("the Bluetooth module answered without its address");
    }
  });
  if (!dropped) {
    throw printer.failure("the Bluetooth module did not drop the link");
  }
  return done("The Bluetooth module has dropped the link.");
}

}  // namespace quordalvane::tool
