#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::ThrowsMessage;

const Bytes statusBlock = hex("89 01 00000020 00 00 05");

Faults also(Faults faults, std::string_view name, std::string_view value) {
  faults.add(name, value);
  return faults;
}

TEST(InjectedFaults, CanBeGivenToTheBuilderByACallOrAsASetting) {
  const PrinterBuilder builder =
      PrinterBuilder().fault("short-writes", "3").seed(5).set("late-reply", "20").set("seed", "7");
  ASSERT_EQ(builder.faults().list.size(), 2U);
  EXPECT_EQ(builder.faults().list[0].kind, FaultKind::ShortWrites);
  EXPECT_EQ(builder.faults().list[1].kind, FaultKind::LateReply);
  EXPECT_EQ(builder.faults().seed, 7U);
  EXPECT_EQ(PrinterBuilder().seed(5).faults().seed, 5U);
  EXPECT_THROW(PrinterBuilder().fault("no-such-fault", "1"), std::invalid_argument);
}

TEST(InjectedFaults, AShortWriteAcceptsAtMostTheGivenNumberOfBytes) {
  Session session(with("short-writes", "3"));
  EXPECT_EQ(session.link->space(session.now), 3U);
  EXPECT_EQ(session.link->write(ascii("abcdef"), session.now), 3U);
  EXPECT_EQ(session.link->write(ascii("def"), session.now), 3U);
  EXPECT_EQ(session.printer.printed(), ascii("abcdef"));
}

TEST(InjectedFaults, TheNoSpaceFaultStopsWritesForTheGivenTime) {
  Session session(with("no-space", "4:1500"));
  EXPECT_EQ(session.link->write(ascii("abcdef"), session.now), 4U);
  EXPECT_EQ(session.link->space(session.now), 0U);
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 1500ms);
  session.wait(1499ms);
  EXPECT_EQ(session.link->write(ascii("ef"), session.now), 0U);
  session.wait(1ms);
  EXPECT_TRUE(session.send(ascii("ef")));
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
}

TEST(InjectedFaults, TheByteCountOfAStallOrALinkCutIncludesAllWrites) {
  for (const auto& [name, value] : {std::pair{"no-space", "4:1500"}, {"cut-after-in", "4"}}) {
    Session session(with(name, value));
    EXPECT_EQ(session.link->write(ascii("abc"), session.now), 3U) << name;
    EXPECT_EQ(session.link->write(ascii("def"), session.now), 1U) << name;
    EXPECT_EQ(session.printer.printed(), ascii("abcd")) << name;
  }
}

TEST(InjectedFaults, ALateReplyIsDelayedByExactlyTheGivenTime) {
  Session session(with("late-reply", "700"));
  EXPECT_EQ(session.ask(statusRequest), Bytes{});
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 700ms);
  session.wait(699ms);
  EXPECT_EQ(session.receive(), Bytes{});
  session.wait(1ms);
  EXPECT_EQ(session.receive(), statusBlock);
}

TEST(InjectedFaults, ALateReplyDelaysLaterReplies) {
  Session session(with("late-reply", "700@1"));
  session.send("100401");
  session.wait(100ms);
  EXPECT_EQ(session.ask(statusRequest), Bytes{});
  EXPECT_EQ(session.ask("1d4931"), Bytes{});
  session.wait(600ms);
  EXPECT_EQ(session.receive(), hex("12") + statusBlock + hex("20"));
  EXPECT_EQ(session.ask("100401"), hex("12"));
}

TEST(InjectedFaults, ASplitReplyArrivesInPiecesAtTheGivenOffsets) {
  Session session(with("split-reply", "1/8"));
  EXPECT_EQ(session.ask(statusRequest), hex("89"));
  session.wait(50ms);
  EXPECT_EQ(session.receive(), hex("01 00000020 00 00"));
  session.wait(50ms);
  EXPECT_EQ(session.receive(), hex("05"));
}

TEST(InjectedFaults, ADuplicateReplyArrivesTwice) {
  Session session(with("duplicate-reply", "2"));
  EXPECT_EQ(session.ask(statusRequest), statusBlock);
  EXPECT_EQ(session.ask(statusRequest), statusBlock + statusBlock);
  EXPECT_EQ(session.ask(statusRequest), statusBlock);
}

TEST(InjectedFaults, ADroppedReplyDoesNotArrive) {
  Session once(with("drop-reply", "1"));
  EXPECT_EQ(once.ask(statusRequest), Bytes{});
  EXPECT_EQ(once.ask(statusRequest), statusBlock);
  Session all(with("drop-reply", "all"));
  EXPECT_EQ(all.ask(statusRequest), Bytes{});
  EXPECT_EQ(all.ask(statusRequest), Bytes{});
}

int wrongBits(const Bytes& a, const Bytes& b) {
  int count = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    count += std::popcount(static_cast<unsigned>(a[i] ^ b[i]));
  return count;
}

TEST(InjectedFaults, ACorruptReplyHasOneWrongBitChosenByTheSeed) {
  std::vector<Bytes> replies;
  for (unsigned seed = 0; seed <= 100; ++seed) {
    Faults faults = with("corrupt-reply", "all");
    faults.seed = seed % 100;
    Session session(faults);
    replies.push_back(session.ask(statusRequest));
    ASSERT_EQ(replies.back().size(), statusBlock.size());
    EXPECT_EQ(wrongBits(replies.back(), statusBlock), 1);
  }
  EXPECT_EQ(replies.front(), replies.back());
  EXPECT_NE(std::adjacent_find(replies.begin(), replies.end(), std::not_equal_to<>()),
            replies.end());
}

TEST(InjectedFaults, TheDefaultSeedIsZero) {
  for (const char* request : {"1b0601", "1d4941"}) {
    Session unseeded(with("corrupt-reply", "all"));
    Session seeded(also(with("corrupt-reply", "all"), "seed", "0"));
    EXPECT_EQ(unseeded.ask(request), seeded.ask(request));
  }
}

TEST(InjectedFaults, AStrayByteArrivesBeforeAReply) {
  Session session(with("stray-byte", "1b@2"));
  EXPECT_EQ(session.ask("100401"), hex("12"));
  EXPECT_EQ(session.ask("100401"), hex("1b 12"));
  EXPECT_EQ(session.ask("100401"), hex("12"));
}

TEST(InjectedFaults, ThePrinterIsSilentFromTheGivenRequestOn) {
  Session session(with("silence", "2"));
  EXPECT_EQ(session.ask("100401"), hex("12"));
  EXPECT_EQ(session.ask("100401 1b0601 1d4941"), Bytes{});
  EXPECT_TRUE(session.link->connected(session.now));
}

TEST(InjectedFaults, SeveralFaultsCanAffectOneReply) {
  Session session(
      also(also(with("stray-byte", "ff"), "duplicate-reply", "all"), "late-reply", "10"));
  EXPECT_EQ(session.ask("100401"), Bytes{});
  session.wait(10ms);
  EXPECT_EQ(session.receive(), hex("ff12 ff12"));
}

TEST(InjectedFaults, ALinkCutAfterTheGivenNumberOfReceivedBytesStillGivesEarlierAnswers) {
  Session session(with("cut-after-in", "5"));
  EXPECT_EQ(session.link->write(hex("100401") + ascii("abc"), session.now), 5U);
  EXPECT_TRUE(session.link->dropped(session.now));
  EXPECT_TRUE(session.link->connected(session.now));
  EXPECT_EQ(session.receive(), hex("12"));
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_FALSE(session.link->wasReset(session.now));
  EXPECT_EQ(session.link->write(ascii("c"), session.now), 0U);
  EXPECT_EQ(session.printer.printed(), ascii("ab"));
}

TEST(InjectedFaults, AnImmediateLinkCutLosesUnreadBytes) {
  Session session(with("cut-after-in", "3:at-once"));
  session.send("100401");
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_FALSE(session.link->wasReset(session.now));
  EXPECT_EQ(session.receive(), Bytes{});
}

TEST(InjectedFaults, AResetLinkReportsTheReset) {
  Session session(with("cut-after-in", "3:reset"));
  session.send("100401");
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_TRUE(session.link->wasReset(session.now));
  EXPECT_EQ(session.receive(), Bytes{});
}

TEST(InjectedFaults, ALinkIsCutAfterTheGivenNumberOfSentBytes) {
  for (std::size_t count = 0; count <= statusBlock.size(); ++count) {
    Session session(with("cut-after-out", std::to_string(count)));
    session.send(statusRequest);
    EXPECT_EQ(session.receive(),
              Bytes(statusBlock.begin(), statusBlock.begin() + static_cast<int>(count)));
    EXPECT_FALSE(session.link->connected(session.now)) << count;
  }
}

TEST(InjectedFaults, TheFirstOfSeveralLinkCutsEndsTheLink) {
  for (const auto& [first, second] : {std::pair{"3:reset", "5:drain"}, {"5:drain", "3:reset"}}) {
    Session in(also(with("cut-after-in", first), "cut-after-in", second));
    EXPECT_EQ(in.link->write(ascii("abcdef"), in.now), 3U);
    EXPECT_TRUE(in.link->wasReset(in.now));
    Session out(also(with("cut-after-out", first), "cut-after-out", second));
    out.send(statusRequest);
    EXPECT_TRUE(out.link->wasReset(out.now));
  }
  Session same(also(with("cut-after-in", "3:drain"), "cut-after-in", "3:reset"));
  same.send("100401");
  EXPECT_EQ(same.receive(), hex("12"));
  EXPECT_FALSE(same.link->wasReset(same.now));
}

TEST(InjectedFaults, TheSmallestOfSeveralWriteLimitsApplies) {
  for (const auto& [first, second] : {std::pair{"2", "5"}, {"5", "2"}}) {
    Session session(also(with("short-writes", first), "short-writes", second));
    EXPECT_EQ(session.link->write(ascii("abcdef"), session.now), 2U);
  }
}

TEST(InjectedFaults, ALinkThatIsCutAfterZeroBytesIsLostAtOnce) {
  Session session(with("cut-after-in", "0"));
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_EQ(session.link->space(session.now), 0U);
}

TEST(InjectedFaults, APrinterThatLosesAllDataStillAnswersButCountsNoEndMarks) {
  Session session(with("prints-nothing", "true"));
  EXPECT_TRUE(session.send(ascii("a job") + hex("17 1b1d03010000")));
  EXPECT_EQ(session.ask(statusRequest), statusBlock);
  EXPECT_EQ(session.printer.printed(), Bytes{});
  EXPECT_EQ(session.link->space(session.now), session.printer.state().bufferSize());
}

TEST(InjectedFaults, ACommandIsLostIfTheFaultIsActiveAtItsFirstByte) {
  const Bytes image = hex("1d7630 00 0a00 0a00") + Bytes(100, 0x17);
  const std::span<const std::uint8_t> bytes(image);
  const struct {
    bool lostFirst;
    Bytes printed;
    unsigned counted;
  } cases[] = {{true, ascii("b"), 2}, {false, image, 0}};
  for (const auto& c : cases) {
    for (std::size_t split = 1; split < image.size(); ++split) {
      Session session;
      const Fault fault = parseFault("prints-nothing", "true");
      if (c.lostFirst)
        session.link->addFault(fault, session.now);
      session.link->write(bytes.first(split), session.now);
      session.link->clearFaults(session.now);
      if (!c.lostFirst)
        session.link->addFault(fault, session.now);
      session.link->write(bytes.subspan(split), session.now);
      session.send(hex("17") + ascii("b") + hex("1b1d03010000"));
      ASSERT_EQ(session.printer.printed(), c.printed) << "switched after " << split;
      ASSERT_EQ(session.printer.state().etbCounter, c.counted) << "switched after " << split;
    }
  }
}

TEST(InjectedFaults, AnUnfinishedImageThatIsNotPrintedDoesNotAffectTheNextConnection) {
  Session session(with("prints-nothing", "true"));
  session.send(hex("1d7630 00 0a00 0a00") + Bytes(50, 0x17));
  session.faults = {};
  session.reconnect();
  session.send(ascii("b") + hex("17"));
  EXPECT_EQ(session.printer.printed(), ascii("b"));
  EXPECT_EQ(session.printer.state().etbCounter, 1);
}

TEST(InjectedFaults, AScriptAppliesSettingsAndFaultsAtTheirTimes) {
  Faults script = with("at", "1000:coverOpen=true");
  script.add("at", "2000:coverOpen=false");
  script.add("at", "3000:cut=reset");
  Session session(PrinterBuilder().speed(10), script);
  session.send(Bytes(100, 'x'));
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 1s);
  session.wait(1500ms);
  EXPECT_EQ(session.ask("100402"), hex("16"));
  EXPECT_EQ(session.printer.printed().size(), 10U);
  session.wait(1s);
  EXPECT_EQ(session.ask("100402"), hex("12"));
  EXPECT_EQ(session.printer.printed().size(), 15U);
  session.wait(1s);
  EXPECT_TRUE(session.link->wasReset(session.now));
}

TEST(InjectedFaults, AScriptAppliesAllStepsThatAreDueAtOneMoment) {
  Faults script = with("at", "1000:coverOpen=true");
  script.add("at", "1000:receiptPaperEmpty=true");
  Session session(script);
  session.wait(1s);
  EXPECT_EQ(session.ask("100402"), hex("36"));
}

TEST(InjectedFaults, ATimedFaultPausesPrintingEvenIfTheHostReadsNothing) {
  Faults script = with("at", "1000:coverOpen=true");
  script.add("at", "2000:coverOpen=false");
  Session session(PrinterBuilder().speed(10), script);
  session.send(Bytes(100, 'x'));
  session.wait(4s);
  session.link->available(session.now);
  EXPECT_EQ(session.printer.printed().size(), 30U);
}

TEST(InjectedFaults, CanBeAddedAndClearedDuringALink) {
  Session session;
  for (const auto& [name, value] : {std::pair{"silence", "1"},
                                    {"short-writes", "1"},
                                    {"no-space", "0:1000"},
                                    {"prints-nothing", "true"},
                                    {"cut-after-in", "100"},
                                    {"at", "5000:cut=drain"}})
    session.link->addFault(parseFault(name, value), session.now);
  EXPECT_EQ(session.link->space(session.now), 0U);
  session.link->clearFaults(session.now);
  EXPECT_EQ(session.ask("100401"), hex("12"));
  EXPECT_TRUE(session.send(Bytes(200, 'x')));
  EXPECT_EQ(session.printer.printed().size(), 200U);
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
}

TEST(InjectedFaults, TheErrorOfAWrongValueNamesTheFaultAndTheAllowedValues) {
  const struct {
    const char* name;
    const char* value;
    const char* takes;
  } cases[] = {
      {"short-writes", "0", "1 or more"},
      {"short-writes", "many", "1 or more"},
      {"no-space", "100", "BYTES:MS"},
      {"no-space", "x:100", "BYTES:MS"},
      {"late-reply", "", "MS or MS@REPLY"},
      {"late-reply", "5@0", "MS or MS@REPLY"},
      {"late-reply", "99999999999999", "MS or MS@REPLY"},
      {"split-reply", "3/2", "rising offsets"},
      {"split-reply", "0", "rising offsets"},
      {"split-reply", "1/", "rising offsets"},
      {"duplicate-reply", "0", "\"all\", the number"},
      {"drop-reply", "every", "\"all\", the number"},
      {"corrupt-reply", "-1", "\"all\", the number"},
      {"stray-byte", "100", "two hex digits"},
      {"wrong-id", "block", "\"all\" or the number"},
      {"foreign-reply", "1", "\"block\", \"process-id\" or \"in-order\""},
      {"silence", "all", "the number of a reply"},
      {"cut-after-in", "12:softly", "drain|at-once|reset"},
      {"cut-after-out", "", "drain|at-once|reset"},
      {"cut", "true", "\"drain\", \"at-once\" or \"reset\""},
      {"prints-nothing", "false", "true"},
      {"at", "coverOpen=true", "MS:KEY=VALUE"},
      {"at", "5:coverOpen", "MS:KEY=VALUE"},
      {"at", "5:at=5:cut=drain", "MS:KEY=VALUE"},
      {"seed", "x", "a whole number"},
      {"gremlins", "1", "cut-after-in"},
  };
  for (const auto& c : cases) {
    Faults faults;
    EXPECT_THAT([&] { faults.add(c.name, c.value); },
                ThrowsMessage<std::invalid_argument>(AllOf(HasSubstr(c.name), HasSubstr(c.takes))))
        << c.name << "=" << c.value;
  }
  EXPECT_THAT([] { parseFault("at", "5:coverOpen=maybe"); },
              ThrowsMessage<std::invalid_argument>(HasSubstr("coverOpen takes true or false")));
}

TEST(InjectedFaults, HaveTheDocumentedNames) {
  for (const char* name :
       {"short-writes", "no-space", "late-reply", "split-reply", "duplicate-reply", "drop-reply",
        "corrupt-reply", "stray-byte", "silence", "cut-after-in", "cut-after-out", "cut",
        "prints-nothing", "at", "wrong-id", "foreign-reply"}) {
    EXPECT_TRUE(isFault(name)) << name;
  }
  EXPECT_FALSE(isFault("seed"));
}

TEST(Faults, ASecondLinkCutDoesNotChangeHowTheLinkEnded) {
  Session session;
  session.link->addFault(parseFault("cut", "reset"), session.now);
  session.link->addFault(parseFault("cut", "drain"), session.now);
  EXPECT_TRUE(session.link->wasReset(session.now));
}

}  // namespace
}  // namespace quordalvane::simulator
