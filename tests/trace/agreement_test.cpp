#include <gtest/gtest.h>

#include <string>

#include "tests/support/Replay.h"
#include "tests/trace/RandomScenario.h"

namespace quordalvane::test {
namespace {

/// Under the sanitizers a script is many times slower. The smaller number of scripts is enough to
/// run every line.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint64_t usualScripts = 10000;
#else
constexpr std::uint64_t usualScripts = 100000;
#endif

TEST(PortAndModel, HaveTheSameEffectsForEveryOperationOnASilentLink) {
  for (const std::int32_t emulation : {unknownEmulation, lineMode, escPos}) {
    for (const Call& call : allCalls()) {
      SCOPED_TRACE(call.name + " in emulation " + std::to_string(emulation));
      Scenario::in(emulation, 3000).run(call);
    }
  }
}

/// The seeds are divided among several tests, which may run side by side.
class SeededScripts : public testing::TestWithParam<std::uint64_t> {
 protected:
  static constexpr std::uint64_t parts = 4;
};

TEST_P(SeededScripts, HaveTheSameEffectsOnThePortAndTheReferenceModel) {
  const auto replayed = replayedSeed("script");
  const std::uint64_t first = replayed.value_or(firstSeed());
  const std::uint64_t count = replayed ? 1 : caseCount("QUOR_SCRIPTS", usualScripts);
  for (std::uint64_t seed = first + GetParam(); seed < first + count; seed += parts) {
    SCOPED_TRACE(howToReplay("script " + std::to_string(seed)));
    const RandomCase chosen = randomCase(seed);
    const Outcome outcome = chosen.scenario.run(chosen.call);
    if (replayed) {
      showReplay(chosen.call.name + "\n" + describe(chosen.scenario) + outcome.report());
    }
    if (HasFailure()) {
      return;
    }
  }
  RecordProperty("cases", std::to_string(count / parts));
}

INSTANTIATE_TEST_SUITE_P(Part, SeededScripts, testing::Range<std::uint64_t>(0, 4));

}  // namespace
}  // namespace quordalvane::test
