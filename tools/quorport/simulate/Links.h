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
  /// fault `at` makes another fault, or a setting of the printer, take effect later, even if there
  /// is no link at that time.
  void add(const simulator::Faults& faults, simulator::Instant now);

  /// Removes all faults, even delayed ones. The seed is kept.
  void clear(simulator::Instant now);

  /// Returns the faults that affect every link or are pending, in the order in which they were
  /// added.
  std::vector<simulator::Fault> faults() const;

  /// Applies the pending faults and settings whose time has arrived.
  void work(simulator::Instant now);

  /// Returns the time at which the next pending fault or setting is due; empty if none is pending.
  std::optional<simulator::Instant> nextEvent() const;

 private:
  struct Coming {  // a fault `at`: the fault or setting in it takes effect at the time `due`
    simulator::Instant due;
    simulator::Fault fault;
  };

  void add(const simulator::Fault& fault, simulator::Instant now);
  void bring(const Coming& coming, simulator::Instant now);
  void setSeed(std::uint64_t seed);

  simulator::VirtualPrinter& printer_;
  simulator::Faults faults_;
  std::vector<simulator::Fault> forNextLink_;
  std::vector<Coming> coming_;  // sorted by their times
  std::unique_ptr<simulator::PrinterLink> link_;
};

}  // namespace quordalvane::tool
