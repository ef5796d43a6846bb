// Every schedule of at most two faults over a job of three commands, for each proof.

#include <gtest/gtest.h>

#include <vector>

#include "tests/simulation/ProofCase.h"
#include "tests/simulation/World.h"
#include "tests/support/Replay.h"

namespace quordalvane::simulation {
namespace {

using Fault = std::pair<std::string, std::string>;

/// A line, an image and a paper cut.
Receipt threeCommands() {
  Receipt receipt;
  receipt.parts = {{'e', 's', 'p', 'r', 'e', 's', 's', 'o', ' ', '2', '.', '2', '0', '\n'},
                   {0x1d, 0x76, 0x30, 0, 2, 0, 4, 0, 1, 2, 3, 4, 5, 6, 7, 8}};
  for (const ByteBuffer& part : receipt.parts) {
    receipt.data.insert(receipt.data.end(), part.begin(), part.end());
  }
  receipt.data.insert(receipt.data.end(), {0x1d, 0x56, 0x00});
  return receipt;
}

Case caseOf(ProofKind proof, std::vector<Fault> faults) {
  Case made;
  made.emulation = ZKEmulationESCPOS;
  made.proof = proof;
  made.endTimeoutMillis = 4000;
  made.printer = {{"speed", "20"}};
  made.faults = std::move(faults);
  return made;
}

PrintResult printWith(const Case& given, const Receipt& receipt, ByteBuffer& paper) {
  World world(given);
  world.openPort();
  PrintResult result = world.printOnOpenPort(receipt.data);
  paper = world.paper();
  return result;
}

bool isPrintedWith(ProofKind proof, const Fault& fault) {
  ByteBuffer paper;
  return printWith(caseOf(proof, {fault}), threeCommands(), paper).outcome == PrintOutcome::Printed;
}

/// The smallest value with which the fault does not affect the job. The value is the number of a
/// reply, or a number of bytes before the link is cut.
std::uint64_t firstHarmless(ProofKind proof, const std::string& fault) {
  std::uint64_t number = 1;
  while (!isPrintedWith(proof, {fault, std::to_string(number)})) {
    ++number;
  }
  return number;
}

/// Every fault of every reply, and a cut of the link after every byte, in each direction.
std::vector<Fault> everyFault(ProofKind proof) {
  std::vector<Fault> all;
  const std::uint64_t replies = firstHarmless(proof, "silence");
  for (std::uint64_t reply = 1; reply < replies; ++reply) {
    const std::string at = std::to_string(reply);
    for (const char* const name : {"drop-reply", "duplicate-reply", "wrong-id"}) {
      all.emplace_back(name, at);
    }
    for (const char* const late : {"700@", "3000@"}) {
      all.emplace_back("late-reply", late + at);
    }
    all.emplace_back("split-reply", "1@" + at);
    for (const char* const stray : {"00@", "12@", "37@"}) {
      all.emplace_back("stray-byte", stray + at);
    }
  }
  for (const char* const cut : {"cut-after-in", "cut-after-out"}) {
    const std::uint64_t end = firstHarmless(proof, cut);
    for (std::uint64_t byte = 0; byte < end; ++byte) {
      all.emplace_back(cut, std::to_string(byte));
    }
  }
  return all;
}

/// Whether each of the two faults adds a byte that looks like an in-order answer. A count
/// of the answers cannot distinguish two such bytes from true answers.
bool isBeyondACount(const Fault& one, const Fault& other) {
  return one.second.starts_with("00@") && other.second.starts_with("00@");
}

class EverySchedule : public testing::TestWithParam<ProofKind> {};

INSTANTIATE_TEST_SUITE_P(Simulation, EverySchedule, testing::ValuesIn(everyProof()));

TEST_P(EverySchedule, WithTwoFaultsConfirmsAJobOnlyIfTheJobIsOnPaper) {
  const Receipt receipt = threeCommands();
  const auto faults = everyFault(GetParam());
  std::uint64_t cases = 0;
  for (std::size_t i = 0; i < faults.size() && !HasFailure(); ++i) {
    for (std::size_t j = i; j < faults.size() && !HasFailure(); ++j) {
      if (GetParam() == ProofKind::InOrder && isBeyondACount(faults[i], faults[j])) {
        continue;
      }
      const Case given = caseOf(GetParam(), {faults[i], faults[j]});
      SCOPED_TRACE(testing::Message() << nameOf(GetParam()) << ": " << given);
      ByteBuffer paper;
      const PrintResult result = printWith(given, receipt, paper);
      ++cases;
      EXPECT_TRUE(result.outcome != PrintOutcome::Printed || isOn(paper, receipt))
          << "called printed without the paper";
      EXPECT_TRUE(result.outcome != PrintOutcome::Refused || isNotOn(paper, receipt))
          << "called refused with the paper";
    }
  }
  RecordProperty("cases", std::to_string(cases));
}

}  // namespace
}  // namespace quordalvane::simulation
