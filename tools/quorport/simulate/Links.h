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

/// The links of a printer, one at a time, and the faults that befall them.
class Links {
 public:
  /// `faults` befall every link. The printer must outlive this.
  Links(simulator::VirtualPrinter& printer, simulator::Faults faults)
      : printer_(printer), faults_(std::move(faults)) {}

  /// Begins a link, which lives until `end`.
  simulator::PrinterLink& begin(simulator::Instant now);

  /// Ends the present link.
  void end() { link_.reset(); }

  /// Adds faults to the present link and to all later ones, and sets the seed if it is
  /// named. Only one link gets a `cut`: the next one if there is none now. The change of `at` is
  /// made at its time whether there is a link or not.
  void add(const simulator::Faults& faults, simulator::Instant now);

  /// Removes all faults, even delayed ones. The seed is kept.
  void clear(simulator::Instant now);

  /// The faults that befall every link, or are pending, in the order in which they were given.
  std::vector<simulator::Fault> faults() const;

  /// Applies the faults and settings that are due.
  void work(simulator::Instant now);

  /// When something is due; empty if nothing is pending.
  std::optional<simulator::Instant> nextEvent() const;

 private:
  struct Coming {  // a fault of the kind `at`, with its time
    simulator::Instant due;
    simulator::Fault fault;
  };

  void add(const simulator::Fault& fault, simulator::Instant now);
  void bring(const Coming& coming, simulator::Instant now);
  void setSeed(std::uint64_t seed);

  simulator::VirtualPrinter& printer_;
  simulator::Faults faults_;
  std::vector<simulator::Fault> forNextLink_;
  std::vector<Coming> coming_;  // in the order of their times
  std::unique_ptr<simulator::PrinterLink> link_;
};

}  // namespace quordalvane::tool
