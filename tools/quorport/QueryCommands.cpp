// The commands that ask the printer a single question, except `status`.

#include <nlohmann/json.hpp>

#include "job/Words.h"
#include "text/Hex.h"
#include "text/Quoted.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

std::string spaced(const std::string& hex) {
  return hex.substr(0, 2) + " " + hex.substr(2);
}

}  // namespace

Report cancel(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  printer.ask([](PrinterInquiry& inquiry) { inquiry.dropAll(); });
  return done("The printer was asked to drop all data that it has not yet printed.");
}

Report firmware(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const std::string text = printer.ask([](PrinterInquiry& inquiry) { return inquiry.firmware(); });
  Report report = done(printable(text));
  report.json["firmware"] = text;
  return report;
}

Report dipswitch(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const auto banks = printer.ask([](PrinterInquiry& inquiry) { return inquiry.dipSwitches(); });
  Report report = done("DIP switches");
  report.json["banks"] = Json::array();
  for (const auto& bank : banks) {
    const std::string hex = hexText(bank);
    report.json["banks"].push_back(hex);
    report.text +=
        "  bank " + std::to_string(report.json["banks"].size()) + ": " + spaced(hex) + " (hex)\n";
  }
  return report;
}

Report buttonSecurity(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const std::int64_t milliseconds =
      printer.ask([](PrinterInquiry& inquiry) { return inquiry.buttonSecurityTimeout(); }).count();
  Report report =
      done(milliseconds == 0 ? "off" : grouped(static_cast<std::uint64_t>(milliseconds)) + " ms");
  report.json["milliseconds"] = milliseconds;
  return report;
}

Report disconnect(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  printer.ask([](PrinterInquiry& inquiry) { inquiry.disconnect(); });
  return done("The Bluetooth module has dropped the link.");
}

}  // namespace quordalvane::tool
