#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/trace/RandomScenario.h"

namespace quordalvane::test {
namespace {

/// A number from the environment, for repeating a failure or for a longer run.
std::uint64_t setting(const char* name, std::uint64_t otherwise) {
  const char* const value = std::getenv(name);
  return value ? std::stoull(value) : otherwise;
}

/// The sanitizers slow a script down many times over, and need fewer to see every line run.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint64_t usualScripts = 10000;
#else
constexpr std::uint64_t usualScripts = 100000;
#endif

TEST(PortAndModel, AgreeOnEveryOperationOnASilentLink) {
  for (const std::int32_t emulation : {unknownEmulation, lineMode, escPos}) {
    for (const Call& call : allCalls()) {
      SCOPED_TRACE(call.name + " in emulation " + std::to_string(emulation));
      Scenario::in(emulation, 3000).run(call);
    }
  }
}

/// The seeds are parted among several tests, which may run side by side.
class SeededScripts : public testing::TestWithParam<std::uint64_t> {
 protected:
  static constexpr std::uint64_t parts = 4;
};

TEST_P(SeededScripts, RunAlikeOnPortAndModel) {
  const bool isRepeated = std::getenv("QUOR_SEED") != nullptr;
  const std::uint64_t first = setting("QUOR_SEED", 1);
  const std::uint64_t count = isRepeated ? 1 : setting("QUOR_SCRIPTS", usualScripts);
  for (std::uint64_t seed = first + GetParam(); seed < first + count; seed += parts) {
    SCOPED_TRACE("repeat with QUOR_SEED=" + std::to_string(seed));
    const RandomCase chosen = randomCase(seed);
    chosen.scenario.run(chosen.call);
    if (HasFailure()) {
      return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Part, SeededScripts, testing::Range<std::uint64_t>(0, 4));

}  // namespace
}  // namespace quordalvane::test
