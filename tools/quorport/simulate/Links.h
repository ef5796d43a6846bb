#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/PrinterLink.h"
#include "simulator/VirtualPrinter.h"

namespace quordalvane::tool {

/// The links of a printer, one at a time, with the faults that affect them.
class Links {
 public:
  /// `faults` affect every link. The printer must outlive this object.
  Links(simulator::VirtualPrinter& printer, simulator::Faults faults)
      : printer_(printer), faults_(std::move(faults)) {}

  /// Begins a link, which lives until `end`.
  simulator::PrinterLink& begin(simulator::Instant now);

  /// Ends the current link.
  void end() { link_.reset(); }

  /// Adds faults to the current link and to all later ones; sets the seed if `faults` contains one.
  /// The fault `cut` ends only one link: the current one, or the next one if there is none. The
  /// fault `at` contains a delay and another fault or a setting of the printer. The contained fault
  /// or setting takes effect after the delay, even if there is no link at that time.
  void add(const simulator::Faults& faults, simulator::Instant now);

  /// Removes all faults, even delayed ones. The seed is kept.
  void clear(simulator::Instant now);

  /// Returns first the faults that affect every link, then each `cut` that waits for the next link,
  /// then each `at` that `add` received and whose delay has not ended.
  std::vector<simulator::Fault> faults() const;

  /// Applies the delayed faults and settings whose delay has ended.
  void work(simulator::Instant now);

  /// Returns the time at which the next delay ends; empty if no fault or setting is delayed.
  std::optional<simulator::Instant> nextEvent() const;

 private:
  // A fault of the kind `At`, and the time at which its delay ends.
  struct Coming {
    simulator::Instant due;
    simulator::Fault fault;
  };

  void add(const simulator::Fault& fault, simulator::Instant now);
  void bring(const Coming& coming, simulator::Instant now);
  void setSeed(std::uint64_t seed);

  simulator::VirtualPrinter& printer_;
  simulator::Faults faults_;
  std::vector<simulator::Fault> forNextLink_;
  std::vector<Coming> coming_;  // sorted by `due`
  std::unique_ptr<simulator::PrinterLink> link_;
};

}  // namespace quordalvane::tool
