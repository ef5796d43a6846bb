#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/VirtualPrinter.h"
#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// What printers were told and answered, gathered until it is shown. Characters that follow one
/// another are one entry; of too many the rest is left out and counted.
class TrafficLog {
 public:
  static constexpr std::size_t mostEntries = 500;

  /// A command or an answer of the printer of that number; `time` is in milliseconds since 1970.
  void add(unsigned printer, const simulator::VirtualPrinter::Deed& deed, std::int64_t time);

  /// A control line and its answer; `printer` 0 is for each.
  void addControl(unsigned printer, std::string_view line, std::string_view answer,
                  std::int64_t time);

  /// A host has connected or left.
  void addHost(unsigned printer, bool isConnected, std::int64_t time);

  bool isEmpty() const { return entries_.empty(); }

  /// The entries as one object; there are none after that.
  Json take();

 private:
  struct Entry {
    std::int64_t time;
    unsigned printer;
    std::string_view kind;
    std::string name{};
    std::string meaning{};
    simulator::Bytes bytes{};  // the first of them
    std::size_t length = 0;
    std::string answer{};  // to a control line
  };

  bool hasRoom();
  bool continuesText(unsigned printer, const simulator::VirtualPrinter::Deed& deed);
  static Json inJson(const Entry& entry);

  std::vector<Entry> entries_;
  std::uint64_t skipped_ = 0;
};

}  // namespace quordalvane::tool
