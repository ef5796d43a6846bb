// Every reply and every command is split, held up, cut, repeated and disturbed, at each of its
// bytes. The model predicts the result.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/faults/AnsweringPrinter.h"
#include "tests/faults/CaseNames.h"
#include "tests/model/Scenario.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

constexpr std::uint32_t limitMillis = 1000;
constexpr std::size_t longestForPairs = 20;
constexpr double instant = 0.01;  // seconds between two pieces of a reply; enough to read the first

/// Seconds for which a link stalls; the last stall is longer than every limit of the operation.
std::vector<double> stalls(const Bytes& reply) {
  const bool isModule = reply.size() > longestForPairs;  // the module has a limit of ten seconds
  return {0.2, 1, (isModule ? 10.0 : 1.0) + 2};
}

Bytes head(const Bytes& whole, std::size_t offset) {
  return {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(offset)};
}

Bytes tail(const Bytes& whole, std::size_t offset) {
  return {whole.begin() + static_cast<std::ptrdiff_t>(offset), whole.end()};
}

/// A fault of a reply or of a command. `name` becomes a part of the name of the test case.
template <typename What>
struct Torture {
  std::string name;
  What what;
};

using ReplyTorture = Torture<Reply>;

/// Returns all faults of the reply that happen at the byte `offset`.
std::vector<ReplyTorture> torturesAt(const Bytes& reply, std::size_t offset) {
  const std::string at = " " + std::to_string(offset);
  const Bytes first = head(reply, offset);
  const Bytes rest = tail(reply, offset);
  std::vector<ReplyTorture> tortures = {
      {"split" + at, {{first, 0}, {rest, instant}}},
      {"cut" + at, {{first, 0}, {{}, instant, true}}},
      {"cut-at-once" + at, {{first, 0, true}}},
      {"duplicate" + at, {{reply + rest, 0}}},
      {"late-duplicate" + at, {{reply, 0}, {rest, instant}}},
  };
  for (const double seconds : stalls(reply)) {
    tortures.push_back({"stall-" + std::to_string(static_cast<int>(seconds * 1000)) + "ms" + at,
                        {{first, 0}, {rest, seconds}}});
  }
  for (const std::uint8_t stray : bytes("00 12 1b 89 ff")) {
    tortures.push_back({"stray-" + std::to_string(stray) + at, {{first + Bytes{stray} + rest, 0}}});
  }
  return tortures;
}

std::vector<ReplyTorture> torturesOf(const Bytes& reply) {
  std::vector<ReplyTorture> tortures;
  for (std::size_t offset = 0; offset <= reply.size(); ++offset) {
    const auto here = torturesAt(reply, offset);
    tortures.insert(tortures.end(), here.begin(), here.end());
  }
  const std::size_t end = std::min(reply.size(), longestForPairs);
  for (std::size_t i = 1; i < end; ++i) {
    for (std::size_t j = i + 1; j < end; ++j) {
      tortures.push_back({"split " + std::to_string(i) + " " + std::to_string(j),
                          {{head(reply, i), 0},
                           {head(tail(reply, i), j - i), instant},
                           {tail(reply, j), 3 * instant}}});
    }
  }
  return tortures;
}

using CommandTorture = Torture<Script>;

/// Returns all faults of a command. Earlier commands have sent `before` bytes, in `attempts`
/// attempts.
std::vector<CommandTorture> torturesOf(const Bytes& command, std::size_t before,
                                       std::size_t attempts) {
  constexpr std::size_t all = 100000;
  std::vector<CommandTorture> tortures;
  const auto add = [&](const std::string& name, const std::vector<std::size_t>& counts) {
    Script script = answeringPrinter();
    script.attempts.assign(attempts, all);
    script.attempts.insert(script.attempts.end(), counts.begin(), counts.end());
    tortures.push_back({name, std::move(script)});
  };
  const auto held = [](std::size_t offset, double seconds) {
    constexpr double attempt = 0.15;  // seconds of one attempt: a wait for space, and a pause
    std::vector<std::size_t> counts(1 + static_cast<std::size_t>(seconds / attempt), 0);
    counts.front() = offset;
    return counts;
  };
  for (std::size_t offset = 0; offset < command.size(); ++offset) {
    const std::string at = " " + std::to_string(offset);
    add("split" + at, {offset});
    for (const double seconds : {0.2, 1.0, 3.0}) {
      add("stall-" + std::to_string(static_cast<int>(seconds * 1000)) + "ms" + at,
          held(offset, seconds));
    }
    Script cut = answeringPrinter();
    tortures.push_back({"cut" + at, cut.isLostAfterBytes(before + offset)});
    Script slow = answeringPrinter();
    tortures.push_back({"pieces-of" + at, slow.takesAtMost(offset + 1)});
    Script failing = answeringPrinter();
    tortures.push_back({"refused" + at, failing.takesAtMost(offset + 1).writeReturns(2, -1)});
    for (std::size_t next = offset + 1; offset > 0 && next < command.size(); ++next) {
      if (next < longestForPairs) {
        add("split" + at + " " + std::to_string(next), {offset, next - offset});
      }
    }
  }
  return tortures;
}

/// The commands that a run has sent, in order.
std::vector<Bytes> commandsOf(const Outcome& outcome) {
  std::vector<Bytes> commands;
  for (const Line& line : outcome.lines) {
    constexpr std::string_view begin = "output.write <";
    if (line.text.starts_with(begin)) {
      commands.push_back(bytes(line.text.substr(begin.size(), line.text.find('>') - begin.size())));
    }
  }
  return commands;
}

bool holds(const Bytes& sent, const Bytes& request) {
  return std::search(sent.begin(), sent.end(), request.begin(), request.end()) != sent.end();
}

class LinkTorture : public testing::TestWithParam<std::int32_t> {
 protected:
  static Scenario scenario() {
    Scenario scenario = Scenario::in(GetParam(), limitMillis);
    scenario.creation.portSettings = "d9";
    scenario.holdMillis = limitMillis;
    scenario.script = answeringPrinter();
    scenario.logging = false;
    return scenario;
  }

  static std::vector<Call> calls() {
    std::vector<Call> calls = allCalls();
    calls.push_back(inTurn({beginCheckedBlock(), write(bytes("41 42 43 0a")), endCheckedBlock()}));
    calls.back().name = "job";
    return calls;
  }

  static void runCase(const std::string& name, const Scenario& scenario, const Call& call) {
    if (!isChosen(name)) {
      return;
    }
    ++cases_;
    SCOPED_TRACE(howToReplay(name));
    const Outcome outcome = scenario.run(call);
    if (replayedCase()) {
      showReplay(describe(scenario) + outcome.report());
    }
  }

  /// Checks and records the number of cases: a sweep without a case would show nothing.
  static void expectCases(std::size_t atLeast) {
    EXPECT_TRUE(cases_ >= atLeast || replayedCase()) << cases_ << " cases";
    RecordProperty("cases", std::to_string(cases_));
    cases_ = 0;
  }

  static std::string prefix(const Call& call) {
    return std::string("torture ") + emulationName(GetParam()) + " " + call.name + " ";
  }

 private:
  static inline std::size_t cases_ = 0;
};

TEST_P(LinkTorture, AnOperationWithDamagedRepliesEndsAsTheReferenceModelPredicts) {
  for (const Call& call : calls()) {
    const Bytes sent = scenario().runOnPort(call).sent();
    std::size_t number = 0;
    for (const Exchange& exchange : exchanges()) {
      ++number;
      if (!holds(sent, exchange.request)) {
        continue;
      }
      for (const ReplyTorture& torture : torturesOf(exchange.reply)) {
        const std::string name =
            prefix(call) + "reply " + std::to_string(number) + " " + torture.name;
        Scenario once = scenario();
        once.script.whenAsked(exchange.request, torture.what);
        runCase(name + " once", once, call);
        Scenario always = scenario();
        always.script.answers.insert(always.script.answers.begin(),
                                     {exchange.request, torture.what, true});
        runCase(name + " always", always, call);
        if (HasFailure()) {
          return;
        }
      }
    }
  }
  expectCases(1000);
}

TEST_P(LinkTorture, AnOperationEndsAsTheModelPredictsIfUnaskedBytesArrive) {
  std::vector<Call> calls = {read(200), getPrinterResponse("*AILBA:", 12, limitMillis),
                             getPrinterResponse(std::nullopt, 0, limitMillis)};
  calls.back().name += "-untitled";
  for (const Call& call : calls) {
    const Bytes reply = ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n");
    for (const ReplyTorture& torture : torturesOf(reply)) {
      Scenario unasked = scenario();
      unasked.script.deliveries = torture.what;
      runCase(prefix(call) + "unasked " + torture.name, unasked, call);
    }
  }
  expectCases(1000);
}

TEST_P(LinkTorture, AnOperationEndsAsTheModelPredictsIfWritesOfItsCommandsFail) {
  for (const Call& call : calls()) {
    std::size_t before = 0;
    std::size_t number = 0;
    for (const Bytes& command : commandsOf(scenario().runOnPort(call))) {
      for (const CommandTorture& torture : torturesOf(command, before, number)) {
        Scenario tortured = scenario();
        tortured.script = torture.what;
        runCase(prefix(call) + "command " + std::to_string(number + 1) + " " + torture.name,
                tortured, call);
        if (HasFailure()) {
          return;
        }
      }
      before += command.size();
      ++number;
    }
  }
  expectCases(1000);
}

INSTANTIATE_TEST_SUITE_P(Emulation, LinkTorture,
                         testing::Values(unknownEmulation, lineMode, escPos));

}  // namespace
}  // namespace quordalvane::test
