#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quordalvane::test {

// Tests that run very many cases name each of them: "script 4711", "fault line-mode …". A failure
// prints the command that repeats only the failed case. All runs of a case are the same.

/// The name of the case that this run repeats; empty if this run includes all cases.
std::optional<std::string> replayedCase();

/// The seed of the replayed case: 4711 if the case is named "script 4711" and `kind` is "script".
/// Empty if the replayed case is of another kind or no case is replayed.
std::optional<std::uint64_t> replayedSeed(const std::string& kind);

/// Whether this run includes the case: every case, unless only one case is replayed.
bool isChosen(const std::string& name);

/// "repeat with: ./dev replay NAME", for failure messages.
std::string howToReplay(const std::string& name);

/// Shows the name and the steps of the replayed case; the text is the same each time.
void showReplay(const std::string& text);

/// The seed of the first case: QUOR_FIRST_SEED, or 1. A long run can be divided into shorter
/// runs with different first seeds.
std::uint64_t firstSeed();

/// How many cases to run: a number from the environment, or `otherwise`.
std::uint64_t caseCount(const char* variable, std::uint64_t otherwise);

}  // namespace quordalvane::test
