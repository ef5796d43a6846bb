#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/simulate/Links.h"

namespace quordalvane::tool {

/// Obeys the lines that change running printers and look at them, one JSON object each. A line is
/// for the printer that it names by `printer`, or for all of them.
class Control {
 public:
  /// Adds a printer under a name, which may be empty. Both must outlive this.
  void add(const std::string& name, simulator::VirtualPrinter& printer, Links& links) {
    printers_.push_back({name, printer, links});
  }

  /// Obeys a line and returns the answer, one JSON object: `ok` true, or false with `error`, and
  /// then nothing has changed.
  std::string answer(std::string_view line, simulator::Instant now);

  /// Whether a line has asked for the end.
  bool quitWanted() const { return quitWanted_; }

 private:
  struct Printer {
    std::string name;
    simulator::VirtualPrinter& printer;
    Links& links;
  };
  using Printers = std::vector<Printer*>;

  Json obey(Json request, simulator::Instant now);
  Printers printersIn(Json& request);
  static void set(const Printers& printers, const Json& settings, simulator::Instant now);
  static void addFaults(const Printers& printers, const Json& faults, simulator::Instant now);

  std::vector<Printer> printers_;
  bool quitWanted_ = false;
};

}  // namespace quordalvane::tool
