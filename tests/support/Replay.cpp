#include "tests/support/Replay.h"

#include <cstdlib>
#include <iostream>

namespace quordalvane::test {

std::optional<std::string> replayedCase() {
  const char* const name = std::getenv("QUOR_REPLAY");
  return name == nullptr ? std::nullopt : std::optional<std::string>(name);
}

std::optional<std::uint64_t> replayedSeed(const std::string& kind) {
  const auto name = replayedCase();
  if (!name || !name->starts_with(kind + " ")) {
    return std::nullopt;
  }
  return std::stoull(name->substr(kind.size() + 1));
}

bool isChosen(const std::string& name) {
  const auto replayed = replayedCase();
  return !replayed || *replayed == name;
}

std::string howToReplay(const std::string& name) {
  return "repeat with: ./dev replay " + name;
}

void showReplay(const std::string& text) {
  if (const auto name = replayedCase()) {
    std::cout << text << "replayed: " << *name << '\n';
  }
}

std::uint64_t firstSeed() {
  return caseCount("QUOR_FIRST_SEED", 1);
}

std::uint64_t caseCount(const char* variable, std::uint64_t otherwise) {
  const char* const value = std::getenv(variable);
  return value == nullptr ? otherwise : std::stoull(value);
}

}  // namespace quordalvane::test
