#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// Collects the commands that printers received, and the printers' answers, until `take` removes
/// these entries. Consecutive characters become one entry. If there are already `mostEntries`
/// entries, a new entry is only counted. The latest entries that `take` has removed are kept for
/// pages that are opened later.
class TrafficLog {
 public:
  static constexpr std::size_t mostEntries = 500;
  static constexpr std::size_t mostKept = 200;  ///< the count of entries that the page shows

  /// Adds an entry for `deed`: a command that printer number `printer` received, or an answer that
  /// the printer sent. The first printer has the number 1. `time` is in milliseconds since 1970.
  void add(unsigned printer, const simulator::VirtualPrinter::Deed& deed, std::int64_t time);

  /// Adds a control line, which is a command to the simulator, and its answer. `printer` 0 means
  /// all printers.
  void addControl(unsigned printer, std::string_view line, std::string_view answer,
                  std::int64_t time);

  /// Adds the fact that a host has connected or left.
  void addHost(unsigned printer, bool isConnected, std::int64_t time);

  bool isEmpty() const { return entries_.empty(); }

  /// Returns the entries as one JSON object, and removes them.
  Json take();

  /// Returns the latest entries that `take` has returned, in the same form. The entries before
  /// these are counted as skipped.
  Json kept() const;

 private:
  struct Entry {
    std::int64_t time;
    unsigned printer;
    std::string_view kind;
    std::string name{};
    std::string meaning{};
    simulator::Bytes bytes{};  // the first bytes only
    std::size_t length = 0;
    std::string answer{};  // the answer, if the entry is a control line
  };

  bool hasRoom();
  bool continuesText(unsigned printer, const simulator::VirtualPrinter::Deed& deed);
  static Json inJson(const Entry& entry);

  std::vector<Entry> entries_;
  std::uint64_t skipped_ = 0;
  std::deque<Json> kept_;
  std::uint64_t notKept_ = 0;
};

}  // namespace quordalvane::tool
