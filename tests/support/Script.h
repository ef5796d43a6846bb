#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Bytes.h"

namespace quordalvane::test {

/// Bytes that arrive `after` seconds after their request, or after the start if no request causes
/// them.
struct Piece {
  Bytes bytes;
  double after = 0;
  bool losesLink = false;  // the link is lost when the bytes arrive
};

/// A reply, in the pieces in which it arrives.
using Reply = std::vector<Piece>;

/// All actions of a link, given in advance: the same script gives the same run. Times are seconds
/// after the start of the operation under test. Unless the script says otherwise, the link takes
/// each byte immediately and is not lost.
struct Script {
  struct Answer {
    Bytes request;
    Reply reply;
    bool always;
  };

  // -- Input --------------------------------------------------------------------------------------
  Reply deliveries;
  std::vector<Answer> answers;
  std::optional<std::size_t> mostPerRead;
  std::map<std::size_t, std::int64_t> readResults;  // key: the number of the read, from 1
  /// When the link expects more bytes: always, never, or while an answer is due. An answer is due
  /// after a write that may be answered, until a read returns bytes.
  enum class Expects { Always, Never, WhereAsked };
  Expects expects = Expects::Always;

  // -- Output -------------------------------------------------------------------------------------
  // How many bytes the first `write:` sends, how many the second sends, and so on. A `write:` after
  // the last of these sends all its bytes.
  std::vector<std::size_t> attempts;
  std::optional<std::size_t> mostPerWrite;
  double noSpaceUntil = 0;
  std::map<std::size_t, std::int64_t> writeResults;  // key: the number of the write, from 1

  // -- The link and the clock ---------------------------------------------------------------------
  // The answers to the first calls of `isConnected`. Later calls return the real state.
  std::vector<bool> connectedAnswers;
  std::optional<double> lostAt;
  std::optional<double> backAt;
  std::optional<std::size_t> lostAfterBytes;  // the link is lost after so many written bytes
  std::optional<std::size_t> lostAfterReads;  // the link is lost after so many reads
  std::size_t lostAfterCalls = 100000;  // the link is lost after so many calls, so every run ends
  // The seconds by which the wall clock jumps before a reading. The key is the number of this
  // reading, from 1.
  std::map<std::size_t, std::int64_t> clockSteps;
  std::int64_t startMicroseconds = 0;  // microseconds after the full second

  // -- Functions that set these members -----------------------------------------------------------
  Script& delivers(Bytes what, double at = 0);
  /// Answers one `request` by `reply`; a further call answers the next equal request.
  Script& whenAsked(Bytes request, Reply reply);
  /// Answers every `request` that no `whenAsked` answers.
  Script& wheneverAsked(Bytes request, Reply reply);
  Script& givesAtMost(std::size_t count);
  Script& readReturns(std::size_t nth, std::int64_t result);
  Script& takesInAttempts(std::vector<std::size_t> counts);
  Script& takesAtMost(std::size_t count);
  Script& hasNoSpace(double until = 1e9);
  Script& writeReturns(std::size_t nth, std::int64_t result);
  Script& saysConnected(std::vector<bool> answers_);
  Script& isLost(double at = 0);
  Script& isBack(double at);
  Script& isLostAfterBytes(std::size_t count);
  Script& isLostAfterReads(std::size_t count);
  Script& stepsClock(std::size_t reading, std::int64_t seconds);
  Script& startsPastTheSecond(std::int64_t microseconds);
};

/// For failure messages.
std::string describe(const Script& script);

}  // namespace quordalvane::test
