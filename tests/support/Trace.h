#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "logging/LogRecord.h"

namespace quordalvane::test {

/// The subject of a line of a trace.
enum class About { Question, Data, Wait, Lifecycle, Log };

/// One line of a trace.
struct Line {
  About about;
  std::string method;  // the method that a log record names
  std::string text;
  double at = 0;  // the time of a call to the platform, in seconds

  /// True if the two lines are equal except for their times.
  bool operator==(const Line& other) const {
    return about == other.about && method == other.method && text == other.text;
  }
};

/// The events, in order: calls to the platform and log records. An address is shown by the name
/// that `name` gave it; an address without a name is "<address>", and null is "0x0".
class Trace {
 public:
  /// Creates an empty trace. Log records from before this call are not part of it.
  Trace();

  /// Sets the clock that is read for each call to the platform. Without a clock, lines have no
  /// time.
  void measureBy(std::function<double()> clock) { clock_ = std::move(clock); }

  void name(const void* object, std::string name);

  /// The name of an address as a record shows it.
  std::string nameOf(const void* object) const;

  /// Notes a call to the platform that is made now.
  void note(About about, const std::string& text);

  /// Notes a record that was not given to the LogWriter.
  void log(ZKLogType type, std::int32_t level, const std::string& method,
           const std::string& message);

  /// Lines noted by the calling thread begin with `name` and ": ".
  void nameThread(const std::string& name);

  /// Forgets the events so far.
  void clear();

  /// Returns all events in order: the calls to the platform, and the log records between them.
  std::vector<Line> lines();

 private:
  struct Entry {
    std::uint64_t recordsBefore;
    Line line;
  };

  std::string threadPrefix(std::int32_t thread) const;
  std::string withNames(std::string_view message) const;
  Line lineOf(const LogRecord& record) const;

  std::function<double()> clock_;
  mutable std::mutex mutex_;  // guards everything below
  std::map<std::uint64_t, std::string> names_;
  std::map<std::int32_t, std::string> threads_;
  std::vector<Entry> entries_;
  std::vector<LogRecord> records_;
  std::uint64_t firstRecord_ = 0;
};

/// "Error write: | text", "Process(1) runLoop71 | text": how a trace shows a record.
std::string shownRecord(ZKLogType type, std::int32_t level, const std::string& method,
                        const std::string& message);

/// All lines about the subjects in `about`, one below the other. A line that occurs three times in
/// succession is shown once, after "3 x"; such a group of lines is shown between "3 x {" and "}".
std::string view(const std::vector<Line>& lines, const std::set<About>& about);

/// The records of one method, without its name.
std::string recordsOf(const std::vector<Line>& lines, const std::string& method);

/// All lines, as they are.
std::string whole(const std::vector<Line>& lines);

/// Returns the text without its empty lines, and without the indentation that its first line has. A
/// test may thus indent the text that it expects.
std::string text(std::string_view indented);

}  // namespace quordalvane::test
