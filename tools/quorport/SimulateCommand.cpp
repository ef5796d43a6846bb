#include <csignal>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "simulator/PrinterBuilder.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/simulate/Server.h"

namespace quordalvane::tool {
namespace {

void set(simulator::PrinterBuilder& printer, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string::npos) {
    throw std::invalid_argument("takes KEY=VALUE, not " + inQuotes(assignment));
  }
  printer.set(assignment.substr(0, equals), assignment.substr(equals + 1));
}

simulator::PrinterBuilder printerOf(const SimulateOptions& options) {
  simulator::PrinterBuilder printer;
  for (const std::string& assignment : options.settings) {
    try {
      set(printer, assignment);
    } catch (const std::invalid_argument& error) {
      throw CommandFailure(ExitCode::Usage, std::string("--set: ") + printable(error.what()));
    }
  }
  return printer;
}

// Splits the name from the place: tcp:9100,name=till.
Server::Host hostIn(const std::string& spec) {
  constexpr std::string_view key = ",name=";
  const std::size_t begin = spec.rfind(key);
  if (begin == std::string::npos) {
    return {"", listenAt(spec)};
  }
  const std::string name = spec.substr(begin + key.size());
  if (name.empty() || name != printable(name)) {
    throw CommandFailure(ExitCode::Usage,
                         "--listen takes a name of printable characters, not " + inQuotes(name));
  }
  return {name, listenAt(spec.substr(0, begin))};
}

}  // namespace

Report simulate(const Options& options, const Surroundings& surroundings) {
  // If the command runs in the background of a terminal, reading standard input would stop it.
  std::signal(SIGTTIN, SIG_IGN);
  auto printer = printerOf(options.simulate);
  Server::Places places;
  if (options.simulate.receipts) {
    places.receipts = std::make_unique<ReceiptFolder>(*options.simulate.receipts);
  }
  if (options.simulate.control) {
    places.controls = listenPrivatelyAt(*options.simulate.control, "--control");
  }
  if (options.simulate.web) {
    places.web = listenForBrowsersAt(*options.simulate.web);
    printer.keepReceived();
  }
  for (const std::string& spec : options.simulate.listen) {
    places.hosts.push_back(hostIn(spec));
  }
  const Station::Habits ofPrinters = {.hosts = options.simulate.hosts, .per = options.simulate.per};
  const unsigned long notOk =
      Server(printer.state(), printer.faults(), std::move(places),
             {.asJson = options.json, .strict = options.simulate.strict, .printer = ofPrinters},
             surroundings.streams)
          .run();
  Report report;
  if (notOk > 0) {
    report.code = ExitCode::ExchangeFailed;
    report.error =
        std::to_string(notOk) +
        " of the jobs were incomplete, or contained something that this printer does not know";
  }
  return report;
}

}  // namespace quordalvane::tool
