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

/// A virtual printer and the address at which hosts connect to it. The printer prints for one host
/// at a time. Other hosts wait, are refused, or print between two jobs of the connected host.
class Station {
 public:
  struct Habits {
    HostRule hosts = HostRule::One;
    ReceiptPer per = ReceiptPer::Job;
  };

  /// The function that is called with the paper of each job.
  using Keeper = std::function<void(Station&, simulator::Paper)>;
  Station(std::string name, std::unique_ptr<Listener> listener, simulator::PrinterState state,
          simulator::Faults faults, Habits habits, Keeper keep);
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;

  /// Returns the name that the user gave the printer; may be empty.
  const std::string& name() const { return name_; }

  /// Returns the current address in the form that the option --device reads.
  std::string place() const { return listener_->place(); }

  simulator::VirtualPrinter& printer() { return printer_; }
  const simulator::VirtualPrinter& printer() const { return printer_; }
  Links& links() { return links_; }

  /// Returns true if a host is connected.
  bool hasHost() const { return host_.has_value(); }

  /// `watch` is called with true when a host connects, and with false when it leaves.
  void watchHosts(std::function<void(bool)> watch) { watchHosts_ = std::move(watch); }

  /// Returns the counts since the printer was switched on. The cuts, drawer pulses and beeps of the
  /// receipt that is still in the printer are included.
  Counters counters() const;

  /// Tears off the paper that has been printed so far, even in the middle of a job.
  void tearOff() { give(printer_.tearOff()); }

  /// Queues a test receipt. It is printed between two jobs, as if another host had sent it. Throws
  /// std::invalid_argument, with a text for people, if too many hosts wait already.
  void printTest();

  /// Adds the descriptors for which this station waits.
  void await(std::vector<pollfd>& awaited) const;

  /// Returns the time at which `work` must be called even if no descriptor is ready; empty if
  /// never.
  std::optional<simulator::Instant> nextEvent(simulator::Instant now) const;

  /// `advance` moves the printer's time to `now`. `work` then does all that can be done for hosts.
  void advance(simulator::Instant now);
  void work(simulator::Instant now);

  /// Ends all connections, and tears off the paper that is still in the printer.
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
  std::list<std::unique_ptr<Line>> waiting_;  // connected hosts that wait until they may print
  std::function<void(bool)> watchHosts_;      // empty if nobody watches
  Counters done_;                             // the counts of the papers that were passed to `keep`
};

}  // namespace quordalvane::tool
