#pragma once

#include <poll.h>

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Options.h"
#include "tools/process/Signals.h"
#include "tools/quorport/Streams.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/simulate/ControlChannel.h"
#include "tools/quorport/simulate/HostConnection.h"
#include "tools/quorport/simulate/Links.h"
#include "tools/quorport/simulate/Listener.h"
#include "tools/quorport/simulate/ReceiptFolder.h"

namespace quordalvane::tool {

/// Serves one printer to hosts, one after the other, and to those who control it.
///
/// One thread, one loop: it sleeps until a descriptor is ready or the printer does something by
/// itself, and then lets each do its work that needs no waiting.
class Server {
 public:
  struct Places {
    std::unique_ptr<Listener> hosts;
    std::unique_ptr<Listener> controls;       ///< may be null
    std::unique_ptr<ReceiptFolder> receipts;  ///< may be null
  };

  struct Habits {
    bool asJson = false;
    bool strict = false;  ///< a job that could not be printed as it was meant is not ok
    ReceiptPer per = ReceiptPer::Job;
  };

  Server(simulator::PrinterState state, simulator::Faults faults, Places places, Habits habits,
         const Streams& streams);

  /// Serves until SIGINT, SIGTERM, SIGHUP or a control line ends it. Returns how many jobs were not
  /// ok.
  unsigned long run();

 private:
  void sleep(simulator::Instant now);
  std::optional<simulator::Instant> nextEvent(simulator::Instant now) const;
  void work(simulator::Instant now);
  void workForHost(simulator::Instant now);
  bool acceptHost(simulator::Instant now);
  bool hostMakesWay() const;
  bool hostMayHaveLeft() const;
  void announce();
  std::string announcement(const std::string& place) const;
  void workForControls(simulator::Instant now);
  void collectPaper(simulator::Instant now);
  std::optional<simulator::Instant> endOfJob() const;
  void keep(const simulator::Paper& paper);
  void report(const simulator::Paper& paper, std::vector<std::string> files);
  bool isDone(simulator::Instant now);

  const Streams streams_;
  const Habits habits_;
  StopSignals signals_;
  Places places_;  // outlives the printer, which ends its last job at its end
  simulator::VirtualPrinter printer_;
  Links links_;
  Control control_;
  std::string announced_;
  unsigned long jobs_ = 0;
  unsigned long jobsNotOk_ = 0;
  std::optional<HostConnection> host_;
  std::list<ControlChannel> channels_;
  std::optional<simulator::Instant> quitAt_;  // since a line asked for the end: at the latest
};

}  // namespace quordalvane::tool
