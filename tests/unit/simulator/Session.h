#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/PrinterBuilder.h"
#include "simulator/PrinterLink.h"

namespace quordalvane::simulator {

using namespace std::chrono_literals;

using Bytes = std::vector<std::uint8_t>;

/// Returns the bytes that pairs of hex digits mean; all other characters are ignored.
inline Bytes hex(std::string_view text) {
  Bytes bytes;
  int half = -1;
  for (char c : text) {
    const auto digit = std::string_view("0123456789abcdef").find(c);
    if (digit == std::string_view::npos)
      continue;
    if (half < 0) {
      half = static_cast<int>(digit);
    } else {
      bytes.push_back(static_cast<std::uint8_t>(half * 16 + static_cast<int>(digit)));
      half = -1;
    }
  }
  return bytes;
}

inline Bytes ascii(std::string_view text) {
  return {text.begin(), text.end()};
}

inline Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

/// A printer and a host that talk over one link after another, on a clock of the test's own.
class Session {
 public:
  explicit Session(const PrinterBuilder& builder, Faults linkFaults = {})
      : printer(PrinterBuilder(builder).keepPrinted().state()),
        faults(std::move(linkFaults)),
        link(connect()) {}
  explicit Session(Faults linkFaults) : Session(PrinterBuilder(), std::move(linkFaults)) {}
  Session() : Session(PrinterBuilder()) {}

  /// Writes `bytes` to the link. Returns false if the link took only a part of them.
  bool send(const Bytes& bytes) { return link->write(bytes, now) == bytes.size(); }
  bool send(std::string_view hexText) { return send(hex(hexText)); }

  /// Reads all bytes that have arrived.
  Bytes receive() {
    Bytes bytes(link->available(now));
    bytes.resize(link->read(bytes, now));
    return bytes;
  }

  /// Sends, and reads the immediate answer.
  Bytes ask(const Bytes& request) {
    send(request);
    return receive();
  }
  Bytes ask(std::string_view hexText) { return ask(hex(hexText)); }

  void wait(Instant time) { now += time; }

  void reconnect() {
    link.reset();
    link = connect();
  }

  std::unique_ptr<PrinterLink> connect() {
    return std::make_unique<PrinterLink>(printer, now, faults);
  }

  Instant now = 1000s;
  VirtualPrinter printer;
  Faults faults;
  std::unique_ptr<PrinterLink> link;
};

/// One fault, named as a user names it.
inline Faults with(std::string_view name, std::string_view value) {
  Faults faults;
  faults.add(name, value);
  return faults;
}

inline constexpr std::string_view statusRequest = "1b 06 01";
inline constexpr std::string_view dataCancel = "1b 1d 03 03 00 00";
inline constexpr std::string_view dataCancelEnd = "1b 1d 03 04 00 00";

inline std::uint8_t etbCounterOf(const Bytes& statusBlock) {
  return statusBlock.at(6);
}

}  // namespace quordalvane::simulator
