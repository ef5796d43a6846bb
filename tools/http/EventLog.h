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

/// Holds the latest events, numbered from 1, as the texts that are sent to browsers. It forgets the
/// oldest events, so that it never exceeds its limit, however many readers there are.
class EventLog {
 public:
  explicit EventLog(std::size_t mostBytes) : mostBytes_(mostBytes) {}

  /// Adds an event; `data` is one line.
  void add(std::string_view name, std::string_view data);

  /// Returns the number of the latest event; 0 before the first.
  std::uint64_t latest() const { return latest_; }

  /// Returns true if the log still holds every event whose number is greater than `number`.
  bool holdsAllAfter(std::uint64_t number) const;

  /// Returns the event of that number; null if the event was forgotten or has not happened.
  Text event(std::uint64_t number) const;

  /// Returns the size of all events in the log, in bytes.
  std::size_t bytes() const { return bytes_; }

 private:
  const std::size_t mostBytes_;
  std::deque<Text> events_;
  std::size_t bytes_ = 0;
  std::uint64_t latest_ = 0;
};

/// Returns the text in which an event is sent. An event without a number belongs to no log.
Text eventText(std::string_view name, std::string_view data,
               std::optional<std::uint64_t> number = std::nullopt);

/// One reader of a log, which reads at its own pace. It first reads the texts that the constructor
/// was given, and then each event of the log.
class EventReader {
 public:
  /// Reads the texts of `first`, then the events whose numbers are greater than `after`. The log
  /// must outlive this object.
  EventReader(const EventLog& log, std::deque<Text> first, std::uint64_t after)
      : log_(log), first_(std::move(first)), next_(after + 1) {}

  /// Moves the next bytes, at most `room`, into `out`. Returns the count of moved bytes; 0 if there
  /// are none now.
  std::size_t read(char* out, std::size_t room);

  /// Returns true if there is something to read.
  bool hasMore() const;

  /// Returns true if the reader was too slow: the log has forgotten an event that the reader had
  /// not read.
  bool isLost() const { return !log_.holdsAllAfter(next_ - 1); }

  /// If there is nothing to read, adds a comment line, which browsers ignore.
  void keepAlive();

 private:
  Text current() const;

  const EventLog& log_;
  std::deque<Text> first_;
  std::uint64_t next_;      // the number of the next event
  std::size_t offset_ = 0;  // how many bytes of the current text were read
};

}  // namespace quordalvane::http
