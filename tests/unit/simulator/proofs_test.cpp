#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "simulator/TextRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

constexpr std::string_view askId = "1d 28 48 06 00 30 30 41 42 43 44";
constexpr std::string_view clearBuffer = "10 14 08 01 03 14 01 06 02 08";
const Bytes idReport = hex("37 22 41 42 43 44 00");

PrinterBuilder proving(std::string_view proofs) {
  return PrinterBuilder().set("proofs", proofs);
}

TEST(ProofsOfAPrinter, AreParsedInAnyOrderAndWrittenInAFixedOrder) {
  EXPECT_EQ(Proofs::parse("in-order+block").text(), "block+in-order");
  EXPECT_EQ(Proofs::parse("process-id").text(), "process-id");
  EXPECT_EQ(Proofs::parse(Proofs::all().text()), Proofs::all());
  EXPECT_EQ(Proofs::parse("").text(), "none");
  EXPECT_EQ(Proofs::parse("none"), Proofs());
}

TEST(ProofsOfAPrinter, TheErrorOfAnUnknownProofNamesTheKnownProofs) {
  for (const auto* wrong : {"x", "block+", "+", "block,in-order", "none+block", "Block"}) {
    EXPECT_THAT(
        [&] { PrinterState().set("proofs", wrong); },
        ThrowsMessage<std::invalid_argument>(HasSubstr(R"("block", "process-id" and "in-order")")))
        << wrong;
  }
}

TEST(ProofsOfAPrinter, AreAllSupportedByDefault) {
  Session session;
  EXPECT_EQ(session.ask("1b1d03010000"), hex("1b1d03010000 01 00"));
  EXPECT_EQ(session.ask(askId), idReport);
  EXPECT_EQ(session.ask("1d7201"), hex("00"));
}

TEST(ProofsOfAPrinter, RequestsForUnsupportedProofsAreNotAnsweredAndPrintNothing) {
  Session session(proving("none"));
  EXPECT_EQ(session.ask("1b1d03020000"), Bytes{});
  EXPECT_EQ(session.ask("1b1d03010000"), Bytes{});
  EXPECT_EQ(session.ask(askId), Bytes{});
  EXPECT_EQ(session.ask("1d7201"), Bytes{});
  EXPECT_TRUE(session.printer.paper().items().empty());
  EXPECT_EQ(session.printer.state().etbCounter, 0);
}

TEST(ProofsOfAPrinter, APrinterWithoutCheckedBlocksPrintsTextAfterABlockCommand) {
  Session session(proving("process-id"));
  session.send(hex("1b1d03010000") + ascii("Hello\n"));
  EXPECT_THAT(renderText(session.printer.paper()), HasSubstr("Hello\n"));
}

TEST(ProofsOfAPrinter, APrinterWithoutCheckedBlocksIgnoresADataCancel) {
  Session session(proving("process-id").coverOpen());
  session.send(ascii("kept\n"));
  session.send(dataCancel);
  session.printer.setFlag("coverOpen", false, session.now);
  EXPECT_THAT(renderText(session.printer.paper()), HasSubstr("kept"));
}

TEST(ProcessId, IsReturnedAfterAllEarlierDataIsPrinted) {
  Session session(PrinterBuilder().speed(10));
  session.send(ascii("0123456789\n"));
  EXPECT_EQ(session.ask(askId), Bytes{});
  session.wait(2'199ms);
  EXPECT_EQ(session.receive(), Bytes{});
  session.wait(1ms);
  EXPECT_EQ(session.receive(), idReport);
}

TEST(ProcessId, IsNotAnsweredIfItHasAnUnprintableCharacter) {
  Session session;
  EXPECT_EQ(session.ask("1d 28 48 06 00 30 30 1f 42 43 44"), Bytes{});
  EXPECT_EQ(session.ask("1d 28 48 06 00 30 30 41 42 43 7f"), Bytes{});
  EXPECT_EQ(session.ask("1d 28 48 06 00 30 30 20 7e 20 7e"), hex("37 22 20 7e 20 7e 00"));
}

TEST(ProcessId, IsAnsweredEvenIfItsCommandArrivesInPieces) {
  const Bytes command = hex(askId);
  for (std::size_t at = 1; at < command.size(); ++at) {
    Session session;
    const auto middle = command.begin() + static_cast<std::ptrdiff_t>(at);
    session.send(Bytes(command.begin(), middle));
    session.send(Bytes(middle, command.end()));
    EXPECT_EQ(session.receive(), idReport) << "split at " << at;
  }
}

TEST(ProcessId, IsNotReturnedForARequestInsideAnImage) {
  Session session;
  EXPECT_EQ(session.ask("1d 76 30 00 0b 00 01 00 1d 28 48 06 00 30 30 41 42 43 44"), Bytes{});
  EXPECT_EQ(session.ask("1d 76 30 00 03 00 01 00 1d 72 01"), Bytes{});
  EXPECT_EQ(session.ask("1d 76 30 00 0a 00 01 00 10 14 08 01 03 14 01 06 02 08"), Bytes{});
}

TEST(InOrderStatus, IsAnsweredAfterEarlierDataAndReportsPaperAndDrawer) {
  Session slow(PrinterBuilder().speed(10));
  slow.send(ascii("1234567\n"));
  EXPECT_EQ(slow.ask("1d7231"), Bytes{});
  slow.wait(1'100ms);
  EXPECT_EQ(slow.receive(), hex("00"));
  Session session(
      PrinterBuilder().with(Flag::ReceiptPaperNearEmptyInner).with(Flag::CompulsionSwitch));
  EXPECT_EQ(session.ask("1d7201 1d7231 1d7202 1d7232"), hex("03 03 01 01"));
  EXPECT_EQ(session.ask("1d7203"), Bytes{}) << "there is no such query";
}

TEST(InOrderStatus, IsNotAnsweredWhileThePrinterIsOffLine) {
  Session session(PrinterBuilder().coverOpen());
  EXPECT_EQ(session.ask("1d7201"), Bytes{});
  EXPECT_EQ(session.ask("100402"), hex("16"));
  session.printer.setFlag("coverOpen", false, session.now);
  EXPECT_EQ(session.receive(), hex("00"));
}

TEST(UnaskedStatus, IsSentAtOnceAndAtEachChangeUntilItIsSwitchedOff) {
  Session session;
  EXPECT_EQ(session.ask("1d61ff"), hex("10 00 00 00"));
  session.printer.setFlag("coverOpen", true, session.now);
  EXPECT_EQ(session.receive(), hex("38 00 00 00"));
  session.printer.setFlag("coverOpen", true, session.now);
  session.printer.setFlag("slipTOF", true, session.now);
  EXPECT_EQ(session.receive(), Bytes{}) << "neither is a change of it";
  session.printer.setFlag("coverOpen", false, session.now);
  session.printer.setFlag("receiptPaperEmpty", true, session.now);
  session.printer.setFlag("receiptPaperNearEmptyInner", true, session.now);
  session.printer.setFlag("compulsionSwitch", true, session.now);
  EXPECT_EQ(session.receive(), hex("10000000 18000c00 18000f00 1c000f00"));
  EXPECT_EQ(session.ask("1d6100"), Bytes{});
  session.printer.setFlag("compulsionSwitch", false, session.now);
  EXPECT_EQ(session.receive(), Bytes{});
}

TEST(UnaskedStatus, IsSentAtEveryChangeForEveryParameterExceptZero) {
  for (const char* const switchOn : {"1d6101", "1d6108", "1d6180"}) {
    Session session;
    EXPECT_EQ(session.ask(switchOn), hex("10 00 00 00")) << switchOn;
    session.printer.setFlag("coverOpen", true, session.now);
    EXPECT_EQ(session.receive(), hex("38 00 00 00")) << switchOn;
    session.printer.setFlag("compulsionSwitch", true, session.now);
    EXPECT_EQ(session.receive(), hex("3c 00 00 00")) << switchOn;
  }
}

TEST(UnaskedStatus, ReportsErrorsInItsSecondByte) {
  const std::pair<const char*, const char*> errors[] = {
      {"mechError", "18 04 00 00"},
      {"cutterError", "18 08 00 00"},
      {"voltageError", "18 20 00 00"},
      {"overTemp", "18 40 00 00"},
  };
  for (const auto& [flag, reply] : errors) {
    Session session;
    session.ask("1d61ff");
    session.printer.setFlag(flag, true, session.now);
    EXPECT_EQ(session.receive(), hex(reply)) << flag;
  }
}

TEST(UnaskedStatus, EndsWhenItsConnectionEnds) {
  Session session;
  session.ask("1d61ff");
  session.reconnect();
  session.printer.setFlag("coverOpen", true, session.now);
  EXPECT_EQ(session.receive(), Bytes{});
}

TEST(ClearBufferCommand, DropsTheDataAndIsConfirmed) {
  Session session(PrinterBuilder().coverOpen());
  session.send(ascii("dropped\n"));
  session.send(askId);
  EXPECT_EQ(session.ask(clearBuffer), hex("37 25 00"));
  EXPECT_EQ(session.printer.buffered(), 0U);
  session.printer.setFlag("coverOpen", false, session.now);
  EXPECT_EQ(session.receive(), Bytes{}) << "the process ID was also dropped";
  EXPECT_TRUE(session.printer.paper().items().empty());
}

TEST(FaultsOfOneReplyKind, DropOrRepeatOnlyRepliesOfThatKind) {
  Session session(with("drop-reply", "process-id"));
  EXPECT_EQ(session.ask(std::string(askId) + "1d7201 100401"), hex("00 12"));
  Session twice(with("duplicate-reply", "in-order"));
  EXPECT_EQ(twice.ask(std::string(askId) + "1d7201"), idReport + hex("00 00"));
  Session unasked(with("stray-byte", "13@unasked"));
  EXPECT_EQ(unasked.ask("1d6101 1d7201"), hex("13 10000000 00"));
  Session cleared(with("drop-reply", "cleared"));
  EXPECT_EQ(cleared.ask(clearBuffer), Bytes{});
}

TEST(FaultsOfOneReplyKind, DelayOrSplitOnlyRepliesOfThatKind) {
  Session late(with("late-reply", "700@process-id"));
  EXPECT_EQ(late.ask("1d7201" + std::string(askId)), hex("00"));
  late.wait(700ms);
  EXPECT_EQ(late.receive(), idReport);
  Session split(with("split-reply", "1/3@process-id"));
  EXPECT_EQ(split.ask(askId), hex("37"));
  split.wait(50ms);
  EXPECT_EQ(split.receive(), hex("22 41"));
  split.wait(50ms);
  EXPECT_EQ(split.receive(), hex("42 43 44 00"));
}

TEST(FaultsOfOneReplyKind, AWrongProcessIdIsWellFormedAndDiffersFromTheRequest) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    Faults faults = with("wrong-id", "all");
    faults.seed = seed;
    Session session(faults);
    const char* const ids[] = {"7e 7e 7e 7e", "20 20 20 20", "7d 7d 7d 7d"};
    const std::string id = ids[seed % 3];
    const Bytes reply = session.ask("1d 28 48 06 00 30 30 " + id);
    ASSERT_EQ(reply.size(), idReport.size());
    EXPECT_NE(reply, hex("37 22 " + id + " 00"));
    for (std::size_t i = 2; i < 6; ++i) {
      EXPECT_TRUE(reply[i] >= 0x20 && reply[i] <= 0x7e);
    }
    EXPECT_EQ(reply[6], 0);
  }
}

TEST(FaultsOfOneReplyKind, AReplyForAnotherHostsJobPrecedesTheRightReply) {
  Session id(with("foreign-reply", "process-id"));
  const Bytes both = id.ask(askId);
  ASSERT_EQ(both.size(), 2 * idReport.size());
  EXPECT_EQ(Bytes(both.begin() + 7, both.end()), idReport);
  EXPECT_NE(Bytes(both.begin(), both.begin() + 7), idReport);
  Session status(with("foreign-reply", "in-order"));
  EXPECT_EQ(status.ask("1d7201"), hex("00 00"));
}

TEST(FaultsOfOneReplyKind, ABlockReportForAnotherHostNeverHasTheCountOfThisHost) {
  std::set<std::uint8_t> counts;
  for (unsigned seed = 0; seed < 2000; ++seed) {
    Faults faults = with("foreign-reply", "block");
    faults.seed = seed;
    Session session(faults);
    const Bytes reports = session.ask("1b1d03010000");
    ASSERT_EQ(reports.size(), 16U);
    counts.insert(reports[6]);
    EXPECT_EQ(reports[14], 1);
  }
  EXPECT_GT(counts.size(), 200U);
  EXPECT_EQ(counts.count(1), 0U);
}

TEST(FaultsOfOneReplyKind, AreInvalidForAKindOfReplyThatTheyCannotAffect) {
  EXPECT_THROW(parseFault("foreign-reply", "unasked"), std::invalid_argument);
  EXPECT_THROW(parseFault("wrong-id", "in-order"), std::invalid_argument);
  EXPECT_THROW(parseFault("drop-reply", "status"), std::invalid_argument);
}

TEST(ProofFaults, AWrongIdLeavesOtherRepliesAsTheyAre) {
  Session session(with("wrong-id", "all"));
  EXPECT_EQ(session.ask("1d7201"), hex("00"));
  EXPECT_EQ(session.ask("100401"), hex("12"));
}

}  // namespace
}  // namespace quordalvane::simulator
