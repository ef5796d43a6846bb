#pragma once

#include <memory>
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

  /// Ends the link that there is.
  void end() { link_.reset(); }

  /// Adds faults to the link that there is and to all that follow, and sets the seed if it is
  /// named. Only one link gets the faults that name a moment, `cut` and `at`: the next one where
  /// there is none now.
  void add(const simulator::Faults& faults, simulator::Instant now);

  /// Takes all faults away. The seed stays.
  void clear(simulator::Instant now);

 private:
  void setSeed(std::uint64_t seed);

  simulator::VirtualPrinter& printer_;
  simulator::Faults faults_;
  std::vector<simulator::Fault> forNextLink_;
  std::unique_ptr<simulator::PrinterLink> link_;
};

}  // namespace quordalvane::tool
