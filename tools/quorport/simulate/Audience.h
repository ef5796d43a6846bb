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

/// The browsers that show and control the printers. An audience runs in the event loop that also
/// runs the printers, so it must never block.
class Audience {
 public:
  virtual ~Audience() = default;

  /// Returns the URL of the page, with the token that lets a browser in.
  virtual std::string address() const = 0;

  /// Adds the descriptors for which this object waits.
  virtual void await(std::vector<pollfd>& awaited) const = 0;

  /// Returns the time at which `work` must be called even if no descriptor is ready; empty if
  /// never.
  virtual std::optional<simulator::Instant> nextEvent(simulator::Instant now) const = 0;

  /// Shows the printers' latest output, and does all that can be done for browsers now.
  virtual void work(simulator::Instant now) = 0;

  /// To be called when the paper of a station (a printer with its address) was torn off. Stations
  /// are numbered from 0.
  virtual void tearOff(std::size_t station, const simulator::Paper& paper) = 0;

  /// To be called when the receipts of a job have been drawn.
  virtual void keep(ReceiptWriter::Done job) = 0;
};

/// Serves browsers at `place`, which must be of scheme `tcp:`. `stations` and `control` must
/// outlive the result. Throws a CommandFailure: with ExitCode::Usage in a build without the web
/// server, with ExitCode::ExchangeFailed if the server cannot be started.
std::unique_ptr<Audience> openWeb(std::unique_ptr<Listener> place, std::list<Station>& stations,
                                  Control& control);

}  // namespace quordalvane::tool
