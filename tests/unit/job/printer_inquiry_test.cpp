#include "job/PrinterInquiry.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "job/StatusBlock.h"
#include "tests/support/ScriptedWorld.h"
#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using simulator::PrinterBuilder;
using test::bytes;
using test::Script;

const test::Bytes statusRequest = bytes("1b 06 01");
const test::Bytes onLine = bytes("89 01 00 00 00 00 00 00 05");
const test::Bytes offLine = bytes("89 01 02 00 00 00 00 00 05");

/// A port over a scripted link, and an inquiry on it.
class Asked {
 public:
  explicit Asked(const Script& script, ZKEmulation emulation = ZKEmulationQuorLine,
                 std::uint32_t timeout = 2000)
      : world_(script),
        port_(ExternalAccessoryPort::initWithPortName("BT:", "", timeout, emulation,
                                                      world_.platform())),
        inquiry(port_) {
    EXPECT_TRUE(port_->open());
    world_.start();
  }

  std::chrono::nanoseconds now() { return world_.platform()->clock().monotonic(); }

 private:
  test::ScriptedWorld world_;
  std::shared_ptr<ExternalAccessoryPort> port_;

 public:
  PrinterInquiry inquiry;
};

/// Why a question has no answer; empty if it has one.
template <typename Ask>
std::optional<InquiryCause> causeOf(Ask question) {
  try {
    question();
  } catch (const InquiryError& error) {
    return error.cause();
  }
  return std::nullopt;
}

TEST(StatusBlockHead, HasTheTwoFixedBitsAndALengthOfAtLeastTwo) {
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(startsStatusBlock(static_cast<std::uint8_t>(byte)), byte >= 0x82 && byte <= 0xbf)
        << byte;
  }
}

TEST(PrinterInquiry, ReturnsTheStatusOfAPrinterThatAnswers) {
  Asked asked(Script().wheneverAsked(statusRequest, {{offLine, 0.0}}));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(asked.inquiry.status().offline, 1U);
    EXPECT_EQ(asked.inquiry.heard(), offLine) << "of one question";
  }
}

TEST(PrinterInquiry, RefusesAnAnswerThatIsNotAStatus) {
  for (const char* const answer : {"09 01 00 00 00 00 00 00 05", "48 54 54 50 2f 31 2e 31 20", "81",
                                   "89 02 00 00 00 00 00 00 05"}) {
    const test::Bytes long63(63, 0);
    Script script;
    auto reply = bytes(answer);
    reply.insert(reply.end(), long63.begin(), long63.end());
    script.wheneverAsked(statusRequest, {{reply, 0.0}});
    Asked asked(script);
    EXPECT_EQ(causeOf([&] { asked.inquiry.status(); }), InquiryCause::NotUnderstood) << answer;
  }
}

TEST(PrinterInquiry, DistinguishesASilentPrinterFromALostLink) {
  Asked silent{Script()};
  EXPECT_EQ(causeOf([&] { silent.inquiry.status(); }), InquiryCause::NoAnswer);
  Asked lost(Script().isLost(0.5));
  EXPECT_EQ(causeOf([&] { lost.inquiry.status(); }), InquiryCause::LinkLost);
}

// Some of the port's own queries continue until their time-out even if the link is lost.
TEST(PrinterInquiry, ReportsALostLinkAtOnce) {
  const std::function<void(PrinterInquiry&)> questions[] = {
      [](PrinterInquiry& inquiry) { inquiry.firmware(); },
      [](PrinterInquiry& inquiry) { inquiry.dipSwitches(); },
      [](PrinterInquiry& inquiry) { inquiry.buttonSecurityTimeout(); },
  };
  for (const auto& question : questions) {
    Asked asked(Script().wheneverAsked(statusRequest, {{onLine, 0.0}}).isLost(0.5));
    const auto start = asked.now();
    EXPECT_EQ(causeOf([&] { question(asked.inquiry); }), InquiryCause::LinkLost);
    EXPECT_LT(asked.now() - start, std::chrono::milliseconds(800));
  }
}

TEST(PrinterInquiry, FailsWithoutAKnownEmulation) {
  Asked asked(Script(), ZKEmulationUnknown);
  EXPECT_EQ(causeOf([&] { asked.inquiry.status(); }), InquiryCause::UnknownEmulation);
  EXPECT_EQ(causeOf([&] { asked.inquiry.isOnline(); }), InquiryCause::UnknownEmulation);
  EXPECT_EQ(causeOf([&] { asked.inquiry.firmware(); }), InquiryCause::UnknownEmulation);
}

TEST(PrinterInquiry, WaitsForTheRestOfAnIncompleteFirstAnswer) {
  Script script;
  const test::Bytes head(offLine.begin(), offLine.begin() + 1);
  const test::Bytes rest(offLine.begin() + 1, offLine.end());
  // If only the length were checked, the rest of the first answer would look like an on-line
  // status.
  script.whenAsked(statusRequest, {{head, 0.0}, {rest, 0.15}});
  script.wheneverAsked(statusRequest, {{offLine, 0.0}});
  Asked asked(script);
  const auto start = asked.now();
  EXPECT_FALSE(asked.inquiry.isOnline());
  EXPECT_LT(asked.now() - start, std::chrono::seconds(3)) << "it waits for silence alone";
}

TEST(PrinterInquiry, DoesNotReadTheOnlineStateFromPartOfALateAnswer) {
  // Bytes within the block look like the answers of a printer that is on line.
  const test::Bytes head = bytes("8c 01");
  const test::Bytes soon = bytes("12 12 12");
  const test::Bytes late = bytes("12 12 12 12 12 12 12");
  for (double delay = 0.2; delay < 5; delay += 0.1) {
    Script script;
    script.whenAsked(statusRequest, {{head, 0.0}, {soon, 0.15}, {late, delay}});
    for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
      script.whenAsked(bytes(query), {{bytes("1a"), delay}});
      script.whenAsked(bytes(query), {{bytes("1a"), delay}});
      script.wheneverAsked(bytes(query), {{bytes("1a"), 0.0}});
    }
    Asked asked(script, ZKEmulationESCPOS, 5000);
    EXPECT_FALSE(asked.inquiry.isOnline()) << delay;
  }
}

TEST(PrinterInquiry, AsksForTheOnlineStateAgainAfterBytesThatAreNotAnAnswer) {
  Script script;
  script.whenAsked(
      statusRequest,
      {{bytes("8c 01"), 0.0}, {bytes("12 12 12"), 0.15}, {bytes("12 12 12 12 12 12 12 55"), 0.5}});
  for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
    script.whenAsked(bytes(query), {{bytes("1a"), 0.5}});
    script.whenAsked(bytes(query), {{bytes("1a"), 0.5}});
    script.wheneverAsked(bytes(query), {{bytes("1a"), 0.0}});
  }
  Asked asked(script, ZKEmulationESCPOS, 5000);
  const auto start = asked.now();
  EXPECT_FALSE(asked.inquiry.isOnline());
  EXPECT_GE(asked.now() - start, std::chrono::seconds(5)) << "such bytes end no wait for an answer";
}

TEST(PrinterInquiry, AsksAnAnsweringPrinterForTheOnlineStateTwice) {
  Asked asked(Script().wheneverAsked(statusRequest, {{onLine, 0.0}}));
  EXPECT_TRUE(asked.inquiry.isOnline());
  EXPECT_EQ(asked.inquiry.heard(), test::operator+(onLine, onLine));
}

TEST(PrinterInquiry, ReturnsTheOnlineStateInEscPos) {
  Script script;
  script.wheneverAsked(statusRequest, {{onLine, 0.0}});
  for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
    script.wheneverAsked(bytes(query), {{bytes("12"), 0.0}});
  }
  Asked asked(script, ZKEmulationESCPOS);
  EXPECT_TRUE(asked.inquiry.isOnline());
}

TEST(PrinterInquiry, RefusesAnIncompleteFirmwareAnswerInEscPos) {
  for (const char* const answer : {"12 5f 56 31 00", "5f 56 31", "5f"}) {
    Script script;
    for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
      script.wheneverAsked(bytes(query), {{bytes("12"), 0.0}});
    }
    script.wheneverAsked(bytes("1d 49 41"), {{bytes(answer), 0.0}});
    Asked asked(script, ZKEmulationESCPOS);
    EXPECT_EQ(causeOf([&] { asked.inquiry.firmware(); }), InquiryCause::NoAnswer) << answer;
  }
}

TEST(PrinterInquiry, ReportsAnOffLinePrinterAsNotReadyForTheFirmwareRequest) {
  Asked asked(Script().wheneverAsked(statusRequest, {{offLine, 0.0}}));
  EXPECT_EQ(causeOf([&] { asked.inquiry.firmware(); }), InquiryCause::NotReady);
}

TEST(PrinterInquiry, ReturnsTheButtonSecurityTimeout) {
  const auto report = bytes("1b 23 2c 31 40 0a 0a");
  Asked asked(Script().wheneverAsked(bytes("1b 23 2c 31 0a 00"), {{report, 0.0}}));
  EXPECT_EQ(asked.inquiry.buttonSecurityTimeout(), std::chrono::milliseconds(12'000));
}

TEST(PrinterInquiry, ReturnsZeroIfButtonSecurityIsSwitchedOff) {
  const auto report = bytes("1b 23 2c 31 c0 00 0a");
  Asked asked(Script().wheneverAsked(bytes("1b 23 2c 31 0a 00"), {{report, 0.0}}));
  EXPECT_EQ(asked.inquiry.buttonSecurityTimeout(), std::chrono::milliseconds(0));
}

TEST(PrinterInquiry, RefusesAnAnswerThatIsNotAButtonSecurityTimeout) {
  for (const char* const answer : {"00 00 00 00 00 00 00", "1b 23 2c 33 40 00 0a",
                                   "00 1b 23 2c 31 40 0a", "1b 23 2c 31 40 00 00"}) {
    Asked asked(Script().wheneverAsked(bytes("1b 23 2c 31 0a 00"), {{bytes(answer), 0.0}}));
    EXPECT_EQ(causeOf([&] { asked.inquiry.buttonSecurityTimeout(); }), InquiryCause::NotUnderstood)
        << answer;
  }
}

TEST(PrinterInquiry, FailsIfThePrinterIsSilent) {
  Asked silent{Script()};
  EXPECT_EQ(causeOf([&] { silent.inquiry.buttonSecurityTimeout(); }), InquiryCause::NoAnswer);
  Asked inEscPos(Script(), ZKEmulationESCPOS);
  EXPECT_EQ(causeOf([&] { inEscPos.inquiry.isOnline(); }), InquiryCause::NoAnswer);
}

TEST(PrinterInquiry, ReturnsTheFirmwareInBothEmulations) {
  Script line;
  line.wheneverAsked(statusRequest, {{onLine, 0.0}});
  line.wheneverAsked(bytes("1b 23 2a 0a 00"), {{bytes("1b 23 2a 56 31 0a 00"), 0.0}});
  EXPECT_EQ(Asked(line).inquiry.firmware(), "V1");
  Script escPos;
  for (const char* const query : {"10 04 01", "10 04 02", "10 04 04"}) {
    escPos.wheneverAsked(bytes(query), {{bytes("12"), 0.0}});
  }
  escPos.wheneverAsked(bytes("1d 49 41"), {{bytes("5f 56 31 00"), 0.0}});
  EXPECT_EQ(Asked(escPos, ZKEmulationESCPOS).inquiry.firmware(), "V1");
}

TEST(PrinterInquiry, ReturnsBothBanksOfTheDipSwitches) {
  Script script;
  script.wheneverAsked(bytes("1b 23 2c 31 0a 00"), {{bytes("1b 23 2c 31 40 01 0a"), 0.0}});
  script.wheneverAsked(bytes("1b 23 2c 32 0a 00"), {{bytes("1b 23 2c 32 02 80 0a"), 0.0}});
  const auto banks = Asked(script).inquiry.dipSwitches();
  EXPECT_EQ(banks[0], bytes("40 01"));
  EXPECT_EQ(banks[1], bytes("02 80"));
  Asked silent{Script()};
  EXPECT_EQ(causeOf([&] { silent.inquiry.dipSwitches(); }), InquiryCause::NoAnswer);
}

TEST(PrinterInquiry, ReturnsTheStrongestProofThatThePrinterSupports) {
  EXPECT_EQ(Asked(Script().wheneverAsked(statusRequest, {{onLine, 0.0}})).inquiry.proof(),
            ProofKind::Block);
  EXPECT_EQ(Asked(Script().wheneverAsked(statusRequest, {{bytes("82 01"), 0.0}})).inquiry.proof(),
            ProofKind::None)
      << "a status without a counter";
  for (const ProofKind kind :
       {ProofKind::Block, ProofKind::ProcessId, ProofKind::InOrder, ProofKind::None}) {
    PrinterBuilder printer;
    printer.set("proofs", nameOf(kind));
    const Till till(std::move(printer), {.emulation = ZKEmulationESCPOS});
    EXPECT_EQ(PrinterInquiry(till.port).proof(), kind) << nameOf(kind);
  }
}

TEST(PrinterInquiry, DropsTheLinkOfABluetoothModule) {
  const auto question = test::ascii("AT*AILBA?\r");
  const auto address = test::ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n");
  Asked asked(Script().whenAsked(question, {{address, 0.0}}).isLost(3.0));
  EXPECT_EQ(causeOf([&] { asked.inquiry.disconnect(); }), std::nullopt);
  Asked stubborn(Script().whenAsked(question, {{address, 0.0}}));
  EXPECT_EQ(causeOf([&] { stubborn.inquiry.disconnect(); }), InquiryCause::NoAnswer);
  Asked odd(Script().whenAsked(question, {{test::ascii("\r\nOK\r\n"), 0.0}}));
  EXPECT_EQ(causeOf([&] { odd.inquiry.disconnect(); }), InquiryCause::NotUnderstood);
}

TEST(PrinterInquiry, CanMakeThePrinterDropAllData) {
  Asked asked{Script()};
  EXPECT_EQ(causeOf([&] { asked.inquiry.dropAll(); }), std::nullopt);
}

TEST(PrinterInquiry, ReportsThatTheLinkDidNotTakeAWholeCommand) {
  Asked asked(Script().hasNoSpace());
  EXPECT_EQ(causeOf([&] { asked.inquiry.dropAll(); }), InquiryCause::NoAnswer);
  Asked inEscPos(Script().hasNoSpace(), ZKEmulationESCPOS);
  EXPECT_EQ(causeOf([&] { inEscPos.inquiry.isOnline(); }), InquiryCause::NoAnswer);
  EXPECT_EQ(causeOf([&] { inEscPos.inquiry.proof(); }), InquiryCause::NoAnswer);
}

// If the link first takes only a part of a command, the port may try for ever to send the remaining
// bytes.
TEST(PrinterInquiry, EndsWithinSecondsEvenIfThePortWritesWithoutEnd) {
  Till till(PrinterBuilder(), {.timeoutMillis = 2000});
  till.port->close();
  simulator::Faults full = with("no-space", "4:120");
  full.add("no-space", "6:600000");
  till.accessory->setFaults(full);
  ASSERT_TRUE(till.port->open());
  PrinterInquiry inquiry(till.port);
  const auto start = till.platform->clock().monotonic();
  EXPECT_EQ(causeOf([&] { inquiry.dropAll(); }), InquiryCause::NoAnswer);
  EXPECT_LT(till.platform->clock().monotonic() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace quordalvane
