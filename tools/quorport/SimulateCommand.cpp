#include <csignal>
#include <stdexcept>
#include <utility>

#include "simulator/Faults.h"
#include "simulator/PrinterState.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/simulate/Server.h"

namespace quordalvane::tool {
namespace {

struct Beginning {
  simulator::PrinterState state;
  simulator::Faults faults;
};

void set(Beginning& beginning, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string::npos) {
    throw std::invalid_argument("takes KEY=VALUE, not " + inQuotes(assignment));
  }
  const std::string key = assignment.substr(0, equals);
  const std::string value = assignment.substr(equals + 1);
  if (simulator::isFault(key) || key == "seed") {
    beginning.faults.add(key, value);
  } else {
    beginning.state.set(key, value);
  }
}

Beginning beginningOf(const SimulateOptions& options) {
  Beginning beginning;
  for (const std::string& assignment : options.settings) {
    try {
      set(beginning, assignment);
    } catch (const std::invalid_argument& error) {
      throw Failure(ExitCode::Usage, std::string("--set: ") + printable(error.what()));
    }
  }
  return beginning;
}

}  // namespace

Report simulate(const Options& options, const Surroundings& surroundings) {
  // In the background of a terminal, standard input is not ours to read; trying must not stop us.
  std::signal(SIGTTIN, SIG_IGN);
  Beginning beginning = beginningOf(options.simulate);
  Server::Places places;
  if (options.simulate.receipts) {
    places.receipts = std::make_unique<ReceiptFolder>(*options.simulate.receipts);
  }
  if (options.simulate.control) {
    places.controls = listenPrivatelyAt(*options.simulate.control, "--control");
  }
  places.hosts = listenAt(options.simulate.listen);
  Server(std::move(beginning.state), std::move(beginning.faults), std::move(places),
         surroundings.streams)
      .run();
  return {};
}

}  // namespace quordalvane::tool
