#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane::http {

/// Bytes that several readers share.
using Text = std::shared_ptr<const std::string>;

/// The latest events, numbered from 1, in the form in which they are sent. Old ones are forgotten,
/// so that it never holds more than its limit, however many read it.
class EventLog {
 public:
  explicit EventLog(std::size_t mostBytes) : mostBytes_(mostBytes) {}

  /// Adds an event; `data` is one line.
  void add(std::string_view name, std::string_view data);

  /// The number of the latest event; 0 before the first.
  std::uint64_t latest() const { return latest_; }

  /// Whether no event after this one has been forgotten.
  bool holdsAllAfter(std::uint64_t number) const;

  /// The event of that number; null if it was forgotten or has not happened.
  Text event(std::uint64_t number) const;

  /// How many bytes it holds.
  std::size_t bytes() const { return bytes_; }

 private:
  const std::size_t mostBytes_;
  std::deque<Text> events_;
  std::size_t bytes_ = 0;
  std::uint64_t latest_ = 0;
};

/// An event in the form in which it is sent; without a number it is not one of a log.
Text eventText(std::string_view name, std::string_view data,
               std::optional<std::uint64_t> number = std::nullopt);

/// One reader of a log: what it is sent first, and then each event, byte by byte at its own pace.
class EventReader {
 public:
  /// Continues after the event `after`. The log must outlive this.
  EventReader(const EventLog& log, std::deque<Text> first, std::uint64_t after)
      : log_(log), first_(std::move(first)), next_(after + 1) {}

  /// Moves the next bytes into `out`, at most `room`. Returns their count, 0 if there are none now.
  std::size_t read(char* out, std::size_t room);

  /// Whether there is something to read.
  bool hasMore() const;

  /// Whether it was too slow: an event that it has not read was forgotten.
  bool isLost() const { return !log_.holdsAllAfter(next_ - 1); }

  /// Gives it a line that is no event, if it has nothing else to read.
  void keepAlive();

 private:
  Text current() const;

  const EventLog& log_;
  std::deque<Text> first_;
  std::uint64_t next_;      // the event to be read after those
  std::size_t offset_ = 0;  // of the bytes that have been read of the current text
};

}  // namespace quordalvane::http
