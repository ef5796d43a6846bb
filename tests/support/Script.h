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

/// Some bytes, and how many seconds after the request, or after the start, they arrive.
struct Piece {
  Bytes bytes;
  double after = 0;
  bool losesLink = false;  // when they arrive
};

/// A reply, in the pieces in which it arrives.
using Reply = std::vector<Piece>;

/// All actions of a link, given in advance: the same script gives the same run. Times are seconds
/// after the start of the operation under test. Apart from these actions everything works: every
/// byte is taken at once, and the link remains.
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
  std::map<std::size_t, std::int64_t> readResults;  // by the number of the read, from 1
  /// When the link says that bytes may still arrive: always; never; or after each write that may be
  /// answered, up to the next read that returns bytes.
  enum class Expects { Always, Never, WhereAsked };
  Expects expects = Expects::Always;

  // -- Output -------------------------------------------------------------------------------------
  std::vector<std::size_t> attempts;  // bytes that each `write:` sends; further calls send all
  std::optional<std::size_t> mostPerWrite;
  double noSpaceUntil = 0;
  std::map<std::size_t, std::int64_t> writeResults;  // by the number of the write, from 1

  // -- The link and the clock ---------------------------------------------------------------------
  std::vector<bool> connectedAnswers;  // to the first questions; all later answers are true
  std::optional<double> lostAt;
  std::optional<double> backAt;
  std::optional<std::size_t> lostAfterBytes;       // bytes that were written
  std::optional<std::size_t> lostAfterReads;       // reads of the stream
  std::size_t lostAfterCalls = 100000;             // so that every run ends
  std::map<std::size_t, std::int64_t> clockSteps;  // in seconds, by the reading's number, from 1
  std::int64_t startMicroseconds = 0;              // microseconds after the full second

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
