#pragma once

#include <poll.h>

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/simulate/Counters.h"
#include "tools/quorport/simulate/HostConnection.h"
#include "tools/quorport/simulate/Links.h"
#include "tools/quorport/simulate/Listener.h"

namespace quordalvane::tool {

/// A printer at the place where hosts find it. It prints for one host at a time; others wait, are
/// turned away, or served between two of its jobs.
class Station {
 public:
  struct Habits {
    HostRule hosts = HostRule::One;
    ReceiptPer per = ReceiptPer::Job;
  };

  /// `keep` gets the paper of each job.
  using Keeper = std::function<void(Station&, simulator::Paper)>;
  Station(std::string name, std::unique_ptr<Listener> listener, simulator::PrinterState state,
          simulator::Faults faults, Habits habits, Keeper keep);
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;

  /// The name that the user gave it; empty if none.
  const std::string& name() const { return name_; }

  /// Where hosts find it now, as a SPEC of a device.
  std::string place() const { return listener_->place(); }

  simulator::VirtualPrinter& printer() { return printer_; }
  const simulator::VirtualPrinter& printer() const { return printer_; }
  Links& links() { return links_; }

  /// Whether a host is connected.
  bool hasHost() const { return host_.has_value(); }

  /// From now on `watch` is told when a host connects (true) and when it leaves (false).
  void watchHosts(std::function<void(bool)> watch) { watchHosts_ = std::move(watch); }

  /// Since the beginning, the paper in the printer included.
  Counters counters() const;

  /// Ends the paper that there is, even in the middle of a job.
  void tearOff() { give(printer_.tearOff()); }

  /// Lets a test receipt be printed between two jobs, as of a host of its own. Throws
  /// std::invalid_argument, with a text for people, if too many wait already.
  void printTest();

  /// Adds the events for which it waits.
  void await(std::vector<pollfd>& awaited) const;

  /// When it must work without anything that was waited for; empty if never.
  std::optional<simulator::Instant> nextEvent(simulator::Instant now) const;

  /// Lets time pass for the printer; then does all that can be done for hosts now.
  void advance(simulator::Instant now);
  void work(simulator::Instant now);

  /// Ends the connection and takes the rest of the paper.
  void close();

 private:
  void welcome(simulator::Instant now);
  bool acceptHost(simulator::Instant now);
  void letHostGo();
  void turnAway();
  void letHostsQueue();
  void takeTurns(simulator::Instant now);
  bool mayMakeRoom(simulator::Instant now) const;
  bool listensNow() const;
  bool hostMakesWay() const;
  bool hostMayHaveLeft() const;
  bool somebodyComes() const;
  void collectPaper(simulator::Instant now);
  void give(simulator::Paper paper);
  std::optional<simulator::Instant> endOfJob() const;

  const std::string name_;
  const Habits habits_;
  const Keeper keep_;
  std::unique_ptr<Listener> listener_;
  simulator::VirtualPrinter printer_;
  Links links_;
  std::optional<HostConnection> host_;
  std::list<std::unique_ptr<Line>> waiting_;  // connected hosts whose turn is later
  std::function<void(bool)> watchHosts_;      // may be empty
  Counters done_;                             // of the papers that were given away
};

}  // namespace quordalvane::tool
