#pragma once

#include <poll.h>

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/Paper.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/simulate/Listener.h"
#include "tools/quorport/simulate/ReceiptWriter.h"
#include "tools/quorport/simulate/Station.h"

namespace quordalvane::tool {

/// Those who look at the printers in a browser, and control them. Works on the printers' loop, and
/// never waits.
class Audience {
 public:
  virtual ~Audience() = default;

  /// Where a browser finds the printers; with the token that lets it in.
  virtual std::string address() const = 0;

  /// Adds what it waits for.
  virtual void await(std::vector<pollfd>& awaited) const = 0;

  /// When it must work without anything that was waited for; empty if never.
  virtual std::optional<simulator::Instant> nextEvent(simulator::Instant now) const = 0;

  /// Shows what the printers have done, and does all that can be done for browsers now.
  virtual void work(simulator::Instant now) = 0;

  /// The paper of that station, by its number from 0, was torn off.
  virtual void tearOff(std::size_t station, const simulator::Paper& paper) = 0;

  /// The receipts of a job have been drawn.
  virtual void keep(ReceiptWriter::Done job) = 0;
};

/// Serves browsers at that place, which is one of `tcp:`. The stations and the control must outlive
/// it. Throws a CommandFailure with ExitCode::Usage in a program that was built without the web,
/// and with ExitCode::ExchangeFailed if the system refuses.
std::unique_ptr<Audience> openWeb(std::unique_ptr<Listener> place, std::list<Station>& stations,
                                  Control& control);

}  // namespace quordalvane::tool
