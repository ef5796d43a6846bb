#pragma once

#include <gmock/gmock.h>

#include <string>

#include "tests/unit/port/Printer.h"

// Parts of the traces that the tests of blocks and of statuses expect. Each part is a step that
// occurs in several traces.

namespace quordalvane::test {

/// A command that the link takes whole.
inline std::string written(const Bytes& command) {
  return "output.write " + shown(command) + " -> " + std::to_string(command.size()) + "\n";
}

/// A read of at most `size` bytes that returns `bytes`.
inline std::string received(std::size_t size, const Bytes& bytes) {
  return "input.read " + std::to_string(size) + " -> " + shown(bytes) + "\n";
}

/// The wait for bytes that an earlier exchange has left.
inline const std::string leftovers = "slice for input 0.1\n";

/// The question for the status in line mode, and its answer.
inline std::string lineStatusAsked(const Bytes& status = lineStatus()) {
  return leftovers + written(lineRequest) + received(128, status);
}

/// The three questions for the status in ESC/POS, and their answers.
inline std::string escPosStatusAsked(const char* drawer = "12", const char* cover = "12",
                                     const char* paper = "12") {
  return leftovers + written(dataCancelEnd) +                 //
         written(drawerQuery) + received(1, bytes(drawer)) +  //
         written(coverQuery) + received(1, bytes(cover)) +    //
         written(paperQuery) + received(1, bytes(paper));
}

/// The last records of an operation that failed with this error.
inline auto failedBy(const std::string& error, const std::string& arguments = "<status>, 5") {
  return testing::EndsWith("Error | " + error + "\nEnd | " + arguments + ", -> 0\n");
}

/// The last records of an operation whose wait has passed its limit; the wait began `start` seconds
/// after the clock's first second.
inline auto timedOut(const std::string& limit, int seconds, int now, int start = 0) {
  constexpr int first = 1000000;
  return failedBy("end.tv_sec - start.tv_sec > " + limit + ", " + std::to_string(first + now) +
                  ", " + std::to_string(first + start) + ", " + std::to_string(seconds));
}

}  // namespace quordalvane::test
