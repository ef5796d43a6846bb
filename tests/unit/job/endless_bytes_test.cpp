// Printers, or other devices, that never stop sending.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "job/PrintJob.h"
#include "job/PrinterInquiry.h"
#include "tests/support/ScriptedWorld.h"

namespace quordalvane {
namespace {

using test::bytes;
using test::Script;

constexpr const char* patterns[] = {
    "00",
    "11 13",
    "12",
    "1a",
    "10 00 00 00",
    "17",
    "1b",
    "37 22 41 41 41 41 00",
    "48",
    "89 01 00 00 00 00 00 00 05",
    "89 01 00 00 00 00 02 00 05",
    "1b 1d 03 01 00 00 02 00",
};

/// Sends a byte of the pattern every 30 ms, for longer than any operation may take.
Script chatter(const char* pattern) {
  const test::Bytes all = bytes(pattern);
  Script script;
  for (std::size_t i = 0; i < 4000; ++i) {
    script.delivers({all[i % all.size()]}, 0.03 * static_cast<double>(i));
  }
  return script;
}

class EndlessBytes : public testing::TestWithParam<std::tuple<const char*, ZKEmulation>> {
 protected:
  /// How long `operation` takes on a port with a time-out of 2 s.
  static std::chrono::nanoseconds timeOf(
      const std::function<void(const std::shared_ptr<ExternalAccessoryPort>&)>& operation) {
    const auto& [pattern, emulation] = GetParam();
    test::ScriptedWorld world(chatter(pattern));
    const auto port =
        ExternalAccessoryPort::initWithPortName("BT:", "", 2000, emulation, world.platform());
    EXPECT_TRUE(port->open());
    world.start();
    const auto start = world.platform()->clock().monotonic();
    operation(port);
    return world.platform()->clock().monotonic() - start;
  }
};

INSTANTIATE_TEST_SUITE_P(Job, EndlessBytes,
                         testing::Combine(testing::ValuesIn(patterns),
                                          testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS)));

TEST_P(EndlessBytes, EndAJobInTimeAndConfirmNothing) {
  for (const ProofKind proof : {ProofKind::Auto, ProofKind::Block, ProofKind::ProcessId,
                                ProofKind::InOrder, ProofKind::None}) {
    PrintResult result;
    const auto time = timeOf(
        [&](const auto& port) { result = PrintJob(port, {.proof = proof}).run("receipt\n"); });
    EXPECT_LT(time, std::chrono::seconds(25)) << nameOf(proof);
    EXPECT_NE(result.outcome, PrintOutcome::Printed) << nameOf(proof);
    EXPECT_EQ(result.outcome == PrintOutcome::Refused, result.bytesAccepted == 0) << nameOf(proof);
    EXPECT_NE(result.reason, "") << nameOf(proof);
  }
}

// Each byte could be an answer to the first job's question, which the second one hears out.
TEST(SlowEndlessBytes, EndAJobInTimeThatHearsOutAnEarlierOne) {
  for (const auto& [proof, byte] :
       {std::pair(ProofKind::Block, bytes("12")), std::pair(ProofKind::InOrder, bytes("00"))}) {
    Script script;
    for (int i = 0; i < 10000; ++i) {
      script.delivers(byte, 0.7 * i);
    }
    for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
      script.wheneverAsked(bytes(query), {{bytes("12"), 0.0}});
    }
    test::ScriptedWorld world(script);
    const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 2000, ZKEmulationESCPOS,
                                                              world.platform());
    ASSERT_TRUE(port->open());
    world.start();
    PrintJob(port, {.proof = proof}).run("receipt\n");
    const auto start = world.platform()->clock().monotonic();
    PrintJob(port, {.proof = proof}).run("receipt\n");
    EXPECT_LT(world.platform()->clock().monotonic() - start, std::chrono::seconds(40));
  }
}

TEST_P(EndlessBytes, EndEveryQuestionInTime) {
  const std::function<void(PrinterInquiry&)> questions[] = {
      [](PrinterInquiry& inquiry) { inquiry.status(); },
      [](PrinterInquiry& inquiry) { inquiry.isOnline(); },
      [](PrinterInquiry& inquiry) { inquiry.firmware(); },
      [](PrinterInquiry& inquiry) { inquiry.dipSwitches(); },
      [](PrinterInquiry& inquiry) { inquiry.buttonSecurityTimeout(); },
      [](PrinterInquiry& inquiry) { inquiry.dropAll(); },
      [](PrinterInquiry& inquiry) { inquiry.disconnect(); },
  };
  for (const auto& question : questions) {
    const auto time = timeOf([&question](const auto& port) {
      PrinterInquiry inquiry(port);
      try {
        question(inquiry);
      } catch (const InquiryError& error) {
        EXPECT_NE(error.what(), std::string());
      }
    });
    EXPECT_LT(time, std::chrono::seconds(22)) << "question " << (&question - questions);
  }
}

}  // namespace
}  // namespace quordalvane
