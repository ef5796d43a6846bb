#pragma once

#include <string>
#include <string_view>

#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/simulate/Links.h"

namespace quordalvane::tool {

/// Obeys the lines that change a running printer and look at it, one JSON object each.
class Control {
 public:
  /// Both must outlive this.
  Control(simulator::VirtualPrinter& printer, Links& links) : printer_(printer), links_(links) {}

  /// Obeys a line and returns the answer, one JSON object: `ok` true, or false with `error`, and
  /// then nothing has changed.
  std::string answer(std::string_view line, simulator::Instant now);

  /// Whether a line has asked for the end.
  bool quitWanted() const { return quitWanted_; }

 private:
  Json obey(const Json& request, simulator::Instant now);
  void set(const Json& settings, simulator::Instant now);
  void addFaults(const Json& faults, simulator::Instant now);
  Json state() const;

  simulator::VirtualPrinter& printer_;
  Links& links_;
  bool quitWanted_ = false;
};

}  // namespace quordalvane::tool
