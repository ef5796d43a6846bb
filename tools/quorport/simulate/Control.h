#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/simulate/Counters.h"
#include "tools/quorport/simulate/Links.h"

namespace quordalvane::tool {

/// Obeys the lines that change running printers and look at them, one JSON object each. A line is
/// for the printer that it names by `printer`, or for all of them. Every door to the printers ends
/// here, so that none can do what another cannot.
class Control {
 public:
  /// What is done with the printer as a whole. A deed that cannot be done throws
  /// std::invalid_argument with a text for people.
  struct Deeds {
    std::function<void()> tearOff = [] {};
    std::function<void()> printTest = [] {};
    std::function<Counters()> counters = [] { return Counters(); };
  };

  /// Adds a printer under a name, which may be empty. Both must outlive this.
  void add(const std::string& name, simulator::VirtualPrinter& printer, Links& links, Deeds deeds);

  /// Obeys a line and returns the answer, one JSON object: `ok` true, or false with `error`, and
  /// then nothing has changed. With `only` it is for the printer of that number, from 0.
  std::string answer(std::string_view line, simulator::Instant now,
                     std::optional<std::size_t> only = std::nullopt);

  /// Gets to know each line and its answer.
  using Listener = std::function<void(std::string_view line, std::string_view answer,
                                      std::optional<std::size_t> only)>;
  void listen(Listener listener) { listener_ = std::move(listener); }

  /// What a line `get` answers about a printer.
  Json get(const std::string& what, std::size_t printer) const;

  /// Whether a line has asked for the end.
  bool quitWanted() const { return quitWanted_; }

 private:
  struct Printer {
    std::string name;
    simulator::VirtualPrinter& printer;
    Links& links;
    Deeds deeds;
  };
  using Printers = std::vector<Printer*>;

  Json obey(Json request, simulator::Instant now, std::optional<std::size_t> only);
  Printers printersIn(Json& request, std::optional<std::size_t> only);
  void change(const Printers& printers, const Json& request, simulator::Instant now);
  static void set(const Printers& printers, const Json& settings, simulator::Instant now);
  static void addFaults(const Printers& printers, const Json& faults, simulator::Instant now);

  std::vector<Printer> printers_;
  Listener listener_;
  bool quitWanted_ = false;
};

}  // namespace quordalvane::tool
