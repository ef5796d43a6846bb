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

/// Executes control lines, which change or query the running printers; each line is one JSON
/// object. A line applies to the printer that its key `printer` names, or, without this key, to all
/// printers. Standard input, the control socket and browsers all use this class, so they all
/// understand the same lines.
class Control {
 public:
  /// Actions on the whole printer. If an action is impossible, it throws std::invalid_argument with
  /// a text for people.
  struct Deeds {
    std::function<void()> tearOff = [] {};
    std::function<void()> printTest = [] {};
    std::function<Counters()> counters = [] { return Counters(); };
  };

  /// Adds a printer. `name` may be empty. `printer` and `links` must outlive this object.
  void add(const std::string& name, simulator::VirtualPrinter& printer, Links& links, Deeds deeds);

  /// Executes a line and returns the answer, one JSON object. The key `ok` of the answer is true;
  /// on a failure it is false, `error` contains the reason, and nothing has changed. If `only` is
  /// given, the line applies only to the printer with this number; the first printer has the number
  /// 0.
  std::string answer(std::string_view line, simulator::Instant now,
                     std::optional<std::size_t> only = std::nullopt);

  /// A function that is called with each line and its answer.
  using Listener = std::function<void(std::string_view line, std::string_view answer,
                                      std::optional<std::size_t> only)>;
  void listen(Listener listener) { listener_ = std::move(listener); }

  /// Returns the answer to a `get` line about the printer with this number. The first printer has
  /// the number 0.
  Json get(const std::string& what, std::size_t printer) const;

  /// Returns true if a line has asked the program to end.
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
