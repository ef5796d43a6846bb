// Printers, or other devices, that never stop sending, and links on which the port never stops
// repeating a command.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "job/PrintJob.h"
#include "job/PrinterInquiry.h"
#include "tests/support/ScriptedWorld.h"
#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using test::bytes;
using test::Script;

constexpr const char* signInEscPos = "1b 1d 03 01 00 00 02 00";
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
    signInEscPos,
};

/// The bytes of the pattern again and again, one every 30 ms, for longer than any operation may
/// take.
test::Reply chatter(const char* pattern) {
  const test::Bytes all = bytes(pattern);
  test::Reply pieces;
  for (std::size_t i = 0; i < 4000; ++i) {
    pieces.push_back({{all[i % all.size()]}, 0.03 * static_cast<double>(i)});
  }
  return pieces;
}

Script chatterer(const char* pattern) {
  Script script;
  script.deliveries = chatter(pattern);
  return script;
}

/// A printer that answers as it should until it receives the data, and then never stops sending.
Script chattererAfter(const test::Bytes& data, const char* pattern) {
  Script script;
  const char* const notCounted = "89 01 00 00 00 00 00 00 05";
  const char* const counted = "89 01 00 00 00 00 01 00 05";
  for (const char* const status : {notCounted, notCounted, notCounted, counted}) {
    script.whenAsked(bytes("1b 06 01"), {{bytes(status), 0.0}});
  }
  for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
    script.wheneverAsked(bytes(query), {{bytes("12"), 0.0}});
  }
  script.whenAsked(bytes("1b 1d 03 01 00 00"), {{bytes("1b 1d 03 01 00 00 01 00"), 0.0}});
  return script.whenAsked(data, chatter(pattern));
}

class PrinterThatNeverStopsSending
    : public testing::TestWithParam<std::tuple<const char*, ZKEmulation>> {
 protected:
  /// How long `operation` takes on a port with a time-out of 2 s.
  static std::chrono::nanoseconds timeOf(
      const std::function<void(const std::shared_ptr<ExternalAccessoryPort>&)>& operation,
      const Script& script = chatterer(std::get<0>(GetParam()))) {
    const ZKEmulation emulation = std::get<1>(GetParam());
    test::ScriptedWorld world(script);
    const auto port =
        ExternalAccessoryPort::initWithPortName("BT:", "", 2000, emulation, world.platform());
    EXPECT_TRUE(port->open());
    world.start();
    const auto start = world.platform()->clock().monotonic();
    operation(port);
    return world.platform()->clock().monotonic() - start;
  }
};

INSTANTIATE_TEST_SUITE_P(Job, PrinterThatNeverStopsSending,
                         testing::Combine(testing::ValuesIn(patterns),
                                          testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS)));

TEST_P(PrinterThatNeverStopsSending, CannotDelayAJobBeyond25SecondsOrConfirmTheJob) {
  for (const ProofWords& proof : proofWords) {
    PrintResult result;
    const auto time = timeOf(
        [&](const auto& port) { result = PrintJob(port, {.proof = proof.kind}).run("receipt\n"); });
    EXPECT_LT(time, std::chrono::seconds(25)) << proof.name;
    EXPECT_NE(result.outcome, PrintOutcome::Printed) << proof.name;
    EXPECT_EQ(result.outcome == PrintOutcome::Refused, result.bytesAccepted == 0) << proof.name;
    EXPECT_NE(result.reason, "") << proof.name;
  }
}

// Only `signInEscPos` confirms the job, and only in ESC/POS: with these bytes, a printer reports
// that it has reached the marks before and after the data.
TEST_P(PrinterThatNeverStopsSending, CannotDelayTheEndOfAJobBeyond25Seconds) {
  const test::Bytes data = test::ascii("receipt\n");
  PrintResult result;
  const auto time = timeOf(
      [&](const auto& port) { result = PrintJob(port, {.proof = ProofKind::Block}).run(data); },
      chattererAfter(data, std::get<0>(GetParam())));
  EXPECT_LT(time, std::chrono::seconds(25));
  const auto& [pattern, emulation] = GetParam();
  const bool isSign = emulation == ZKEmulationESCPOS && std::string_view(pattern) == signInEscPos;
  EXPECT_EQ(result.outcome, isSign ? PrintOutcome::Printed : PrintOutcome::Unconfirmed);
  EXPECT_EQ(result.bytesAccepted, data.size());
}

// Each byte from the printer could be a late answer to the request of the first job. The second job
// waits for these late answers.
TEST(PrinterThatSendsSlowlyWithoutEnd, CannotDelayTheNextJobBeyond40Seconds) {
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

TEST_P(PrinterThatNeverStopsSending, CannotDelayAnInquiryBeyond22Seconds) {
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

// After the link has taken a part of a command, the port tries to send the remaining bytes again
// and again, without a pause.
TEST(PortThatWritesWithoutEnd, CannotDelayAJobBeyond16Seconds) {
  Till till(ZKEmulationQuorLine);
  simulator::Faults full = with("no-space", "4:120");
  full.add("no-space", "6:600000");
  till.reopenWith(full);
  const auto start = till.platform->clock().monotonic();
  const PrintResult result = till.print(receiptText);
  EXPECT_LT(till.platform->clock().monotonic() - start, std::chrono::seconds(16));
  EXPECT_EQ(result.outcome, PrintOutcome::Refused);
  EXPECT_EQ(result.reason, "the exchange with the printer did not end in time");
}

}  // namespace
}  // namespace quordalvane
