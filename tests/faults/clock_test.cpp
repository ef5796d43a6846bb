// The wall clock is set back or forward at each of its readings, by a little and by much.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/faults/AnsweringPrinter.h"
#include "tests/faults/CaseNames.h"
#include "tests/model/Scenario.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

constexpr std::int64_t hour = 3600;
constexpr std::int64_t tenYears = std::int64_t{3652} * 24 * hour;

bool isReading(const Line& line) {
  return line.text.starts_with("gettimeofday ");
}

std::size_t readingsOf(const Outcome& outcome) {
  return static_cast<std::size_t>(
      std::count_if(outcome.lines.begin(), outcome.lines.end(), isReading));
}

/// How long it took from one reading of the clock to another, or to the end of the run.
double secondsBetween(const Outcome& outcome, std::size_t first, std::size_t last) {
  double from = 0;
  double to = outcome.lines.empty() ? 0 : outcome.lines.back().at;
  std::size_t reading = 0;
  for (const Line& line : outcome.lines) {
    if (isReading(line) && ++reading == first) {
      from = line.at;
    } else if (isReading(line) && reading == last) {
      to = line.at;
    }
  }
  return to - from;
}

/// The printer's behaviour while the clock is set back or forward. A wait reaches its limit only if
/// the printer does not answer or takes no bytes.
enum class Printer { Answers, IsSilent, TakesNothing };

const char* nameOf(Printer printer) {
  return printer == Printer::Answers    ? "answering"
         : printer == Printer::IsSilent ? "silent"
                                        : "full";
}

class ClockSweep : public testing::TestWithParam<std::tuple<std::int32_t, Printer>> {
 protected:
  static Scenario scenario() {
    const auto [emulation, printer] = GetParam();
    Scenario scenario = Scenario::in(emulation, 2000);
    scenario.creation.portSettings = "d9";
    scenario.holdMillis = 2000;
    scenario.logging = false;
    if (printer == Printer::Answers) {
      scenario.script = answeringPrinter();
    } else if (printer == Printer::TakesNothing) {
      scenario.script.hasNoSpace();
    }
    return scenario;
  }

  /// Returns the name of the case in which the clock is changed by `seconds` at the given reading.
  /// The call's first reading of the clock has the number 1.
  static std::string name(const Call& call, std::int64_t seconds, std::size_t reading) {
    const auto [emulation, printer] = GetParam();
    return std::string("clock ") + emulationName(emulation) + " " + nameOf(printer) + " " +
           call.name + " " + std::to_string(seconds) + " at " + std::to_string(reading);
  }

  /// Runs the call with the clock steps of the script. Returns empty if another case is to be
  /// replayed.
  static std::optional<Outcome> run(const std::string& name, const Scenario& stepped,
                                    const Call& call) {
    if (!isChosen(name)) {
      return std::nullopt;
    }
    SCOPED_TRACE(howToReplay(name));
    Outcome outcome = stepped.run(call);
    if (replayedCase()) {
      showReplay(describe(stepped) + outcome.report());
    }
    return outcome;
  }

  /// A clock that is set forward can end a wait early, but cannot make a wait longer.
  static void stepAhead(const Call& call, const Outcome& undisturbed, std::int64_t seconds) {
    for (std::size_t reading = 1; reading <= readingsOf(undisturbed); ++reading) {
      Scenario stepped = scenario();
      stepped.script.stepsClock(reading, seconds);
      if (const auto outcome = run(name(call, seconds, reading), stepped, call)) {
        EXPECT_LE(outcome->seconds, undisturbed.seconds + 1) << call.name;
      }
    }
  }

  /// A clock that is set back by `seconds` does not end a wait early. The wait becomes longer by at
  /// most `seconds` and the time of `onePass`.
  static void stepBack(const Call& call, const Outcome& undisturbed, std::int64_t seconds) {
    for (std::size_t reading = 1; reading <= readingsOf(undisturbed); ++reading) {
      Scenario stepped = scenario();
      stepped.script.stepsClock(reading, -seconds);
      if (const auto outcome = run(name(call, -seconds, reading), stepped, call)) {
        EXPECT_GE(outcome->seconds, undisturbed.seconds - tolerance) << call.name;
        EXPECT_LE(outcome->seconds,
                  undisturbed.seconds + static_cast<double>(seconds) + onePass(call))
            << call.name;
      }
    }
  }

  /// Sets the clock back by `seconds`, which is too long to wait for, and corrects the clock after
  /// 30 more readings. Before the correction the call must not end early. After the correction the
  /// call must not wait as if the clock were still set back.
  static void stepBackForAWhile(const Call& call, const Outcome& undisturbed,
                                std::int64_t seconds) {
    constexpr std::size_t readings = 30;
    for (std::size_t reading = 1; reading <= readingsOf(undisturbed); ++reading) {
      Scenario stepped = scenario();
      stepped.script.stepsClock(reading, -seconds);
      stepped.script.stepsClock(reading + readings, seconds);
      if (const auto outcome = run(name(call, -seconds, reading), stepped, call)) {
        EXPECT_TRUE(outcome->seconds >= undisturbed.seconds - tolerance ||
                    readingsOf(*outcome) >= reading + readings)
            << call.name << " ended early while the clock was back";
        EXPECT_LE(outcome->seconds, undisturbed.seconds + onePass(call) +
                                        secondsBetween(*outcome, reading, reading + readings))
            << call.name << " continued after the clock was right again";
      }
    }
  }

  static constexpr double tolerance = 1e-6;

  /// Returns the longest time between two readings of the clock in one wait. It is the sum of a
  /// pause and a run-loop slice; a wait for the printer's state also includes the request for this
  /// state.
  static double onePass(const Call& call) {
    const bool asksForStatus = call.name == "beginCheckedBlock" || call.name == "endCheckedBlock";
    return 0.2 + 0.1 + (asksForStatus ? scenario().run(getParsedStatus()).seconds : 0);
  }
};

TEST_P(ClockSweep, AClockStepNeverEndsAWaitEarlyOrProlongsItByMoreThanTheStep) {
  std::size_t readings = 0;
  for (const Call& call : allCalls()) {
    const Outcome undisturbed = scenario().run(call);
    readings += readingsOf(undisturbed);
    for (const std::int64_t seconds : {std::int64_t{1}, hour, tenYears}) {
      stepAhead(call, undisturbed, seconds);
    }
    stepBack(call, undisturbed, 1);
    for (const std::int64_t seconds : {hour, tenYears}) {
      stepBackForAWhile(call, undisturbed, seconds);
    }
    if (HasFailure()) {
      return;
    }
  }
  EXPECT_GT(readings, 20U);
  RecordProperty("cases", std::to_string(readings * 6));
}

INSTANTIATE_TEST_SUITE_P(EmulationAndPrinter, ClockSweep,
                         testing::Combine(testing::Values(unknownEmulation, lineMode, escPos),
                                          testing::Values(Printer::Answers, Printer::IsSilent,
                                                          Printer::TakesNothing)));

/// For each kind of wait, one test waits for the whole hour by which the clock is set back.
TEST(ClockSetBack, ProlongsEachWaitByTheStepAndNoMore) {
  const std::vector<std::pair<std::int32_t, Call>> waits = {
      {lineMode, writeWithRetry(bytes("1b 40"))},
      {lineMode, beginCheckedBlock()},
      {lineMode, endCheckedBlock()},
      {escPos, getParsedStatus()},
      {escPos, endCheckedBlock()},
      {lineMode, retrieveFirmwareInformation2()},
      {escPos, retrieveESCPOSFirmwareInformation()},
      {lineMode, retrieveDipSwitchBank(1)},
      {lineMode, retrieveButtonSecurityTimeout()},
      {lineMode, getPrinterResponse("*AILBA:", 12, 2000)},
      {lineMode, disconnectBluetoothConnection()}};
  for (const auto& [emulation, call] : waits) {
    Scenario scenario = Scenario::in(emulation, 2000);
    scenario.logging = false;
    scenario.script.lostAfterCalls = 1000000;
    if (call.name == "writeWithRetry") {
      scenario.script.hasNoSpace();
    }
    if (call.name == "beginCheckedBlock") {  // a printer on line whose counter does not become 0
      scenario.script.wheneverAsked(bytes("1b 06 01"), {{bytes("89 01 00 00 00 00 01 00 05")}});
    }
    const Outcome undisturbed = scenario.runOnPort(call);
    ASSERT_GT(undisturbed.seconds, 1) << call.name << " waits for nothing";
    const std::size_t readings = readingsOf(undisturbed);
    // The clock is set back by an hour at its last reading, which belongs to the call's last wait.
    scenario.script.stepsClock(readings, -hour);
    const Outcome delayed = scenario.runOnPort(call);
    EXPECT_EQ(delayed.result, undisturbed.result) << call.name;
    EXPECT_NEAR(delayed.seconds, undisturbed.seconds + static_cast<double>(hour), 2) << call.name;
  }
}

}  // namespace
}  // namespace quordalvane::test
