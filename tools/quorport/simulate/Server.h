#pragma once

#include <poll.h>

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/process/Signals.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Streams.h"
#include "tools/quorport/simulate/Audience.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/simulate/ControlChannel.h"
#include "tools/quorport/simulate/Listener.h"
#include "tools/quorport/simulate/ReceiptFolder.h"
#include "tools/quorport/simulate/ReceiptWriter.h"
#include "tools/quorport/simulate/Station.h"

namespace quordalvane::tool {

/// Runs the virtual printers, and serves their hosts, control clients and browsers.
///
/// The server is one loop on one thread. It sleeps until a descriptor is ready or a printer acts by
/// itself, and then does all work that needs no wait. Receipts are drawn on another thread.
class Server {
 public:
  struct Host {
    std::string name;  ///< the printer's name; may be empty
    std::unique_ptr<Listener> listener;
  };

  struct Places {
    std::vector<Host> hosts;                  ///< the printers, with the address of each
    std::unique_ptr<Listener> controls;       ///< the control socket; may be null
    std::unique_ptr<ReceiptFolder> receipts;  ///< the folder for receipts; may be null
    std::unique_ptr<Listener> web;            ///< the address for browsers (`tcp:`); may be null
  };

  struct Habits {
    bool asJson = false;
    bool strict = false;  ///< a job counts as failed unless all of it was printed correctly
    Station::Habits printer;
  };

  /// Every printer begins in `state`, and `faults` affect each of its links.
  Server(const simulator::PrinterState& state, const simulator::Faults& faults, Places places,
         Habits habits, const Streams& streams);

  /// Serves hosts and browsers until SIGINT, SIGTERM, SIGHUP or a control line ends the server.
  /// Returns the count of failed jobs.
  unsigned long run();

 private:
  void sleep(simulator::Instant now);
  void work(simulator::Instant now);
  void announce();
  void announceOthers();
  void workForControls(simulator::Instant now);
  void keep(Station& station, simulator::Paper paper);
  void report(std::vector<ReceiptWriter::Done> jobs);
  std::size_t numberOf(const Station& station) const;
  bool isDone(simulator::Instant now);

  const Streams streams_;
  const Habits habits_;
  StopSignals signals_;
  Places places_;
  ReceiptWriter writer_;  // must outlive the printers, whose destructors end their last jobs
  unsigned long jobs_ = 0;
  unsigned long jobsNotOk_ = 0;
  std::unique_ptr<Audience> audience_;  // may be null; must outlive the printers, which use it
  std::list<Station> stations_;
  Control control_;
  std::map<const Station*, std::string> announced_;  // the last announced address of each printer
  // The channel with control lines on standard input and answers on standard output.
  ControlChannel own_;
  std::list<ControlChannel> channels_;
  std::optional<simulator::Instant> quitAt_;  // the deadline of a request to quit; empty if none
};

}  // namespace quordalvane::tool
