#include <gtest/gtest.h>

#include "tests/unit/simulator/Print.h"

namespace quordalvane::simulator {
namespace {

const Bytes square = hex("1d7630 00 0100 0800 ffffffffffffffff");  // eight dots by eight

TEST(Margins, MoveLinesAndImagesAndSymbolsToTheRight) {
  const Print print(hex("1d4c 6400") + square + ascii("X\n"));
  EXPECT_EQ(print.darkIn(0, 0, 100, 32), 0U);
  EXPECT_EQ(print.darkIn(100, 0, 8, 8), 64U);
  EXPECT_GT(print.darkIn(100, 8, 12, 24), 10U);
}

TEST(PrintedImages, BeginAtTheHorizontalPositionThatTheJobSets) {
  EXPECT_EQ(Print(hex("1b24 6400") + square).darkIn(100, 0, 8, 8), 64U);
  EXPECT_EQ(Print(hex("1d4c 0a00 1b24 6400 1b6100") + square).darkIn(110, 0, 8, 8), 64U);
  const Bytes area = hex("1b4c 1b57 0000 0000 8001 2c01 1b24 6400");
  EXPECT_EQ(Print(area + square + hex("0c")).darkIn(100, 0, 8, 8), 64U);
  const Print code(area + hex("1d286b 0400 31 50 30 68 1d286b 0300 31 51 30 0c"));
  EXPECT_EQ(code.darkIn(0, 0, 100, 200), 0U);
  EXPECT_GT(code.darkIn(100, 0, 63, 63), 500U);
}

TEST(PrintedImages, BeginInsideANarrowedPrintAreaEvenIfTheRequestedPositionIsOutside) {
  EXPECT_EQ(Print(hex("1b24 6400 1d57 3200") + square).darkIn(49, 0, 8, 8), 64U);
}

TEST(PrintedImages, BeginAtTheLeftOfTheNextLineAfterText) {
  EXPECT_EQ(Print(ascii("text") + square).darkIn(0, 30, 8, 8), 64U);
}

TEST(PrintedImages, AreCentredEvenIfTheJobSetsAPosition) {
  EXPECT_EQ(Print(hex("1b6101 1b24 6400") + square).darkIn(188, 0, 8, 8), 64U);
}

TEST(Margins, LimitAlignmentAndLineLength) {
  const Print centred(hex("1d4c 6400 1d57 6400 1b6101") + square);
  EXPECT_EQ(centred.darkIn(146, 0, 8, 8), 64U);
  EXPECT_EQ(Print(hex("1d57 3c00") + ascii("123456789\n")).text(), "12345\n6789\n");
}

TEST(Margins, AlwaysLeaveRoomForALetter) {
  EXPECT_EQ(Print(hex("1d4c ffff 1d57 0000") + ascii("ab\n")).text(), "a\nb\n");
}

TEST(Tabs, MoveToTheColumnsThatTheJobSets) {
  EXPECT_EQ(Print(hex("1b44 03 0a 00") + ascii("a\tb\tc\td\n")).text(), "a  b      cd\n");
  EXPECT_EQ(Print(hex("1b44 00") + ascii("a\tb\n")).text(), "a       b\n");
}

TEST(Characters, HaveTwiceTheSpacingIfTheyAreTwiceAsWide) {
  const auto widthOf = [](const Bytes& job) {
    return std::get<Line>(Print(job).paper().items().at(0)).width();
  };
  EXPECT_EQ(widthOf(hex("1b2006") + ascii("ab\n")), 36U);
  EXPECT_EQ(widthOf(hex("1b2006 1d2110") + ascii("ab\n")), 72U);
}

TEST(Characters, AreGreyInTheSecondColour) {
  const auto darkest = [](const char* colour) {
    const Print print(hex(colour) + hex("1d2177") + ascii("M\n"));
    unsigned most = 0;
    for (unsigned x = 0; x < 96; ++x)
      most = std::max(most, print.darkness(x, 100));
    return most;
  };
  EXPECT_GT(darkest("1b7200"), 200U);
  EXPECT_LT(darkest("1b7201"), 170U);
  EXPECT_GT(darkest("1b7201"), 80U);
}

TEST(Characters, CanBeTurnedClockwiseByAQuarter) {
  const Print upright(ascii("L\n"));
  const Print turned(hex("1b5601") + ascii("L\n"));
  for (unsigned y = 0; y < 24; ++y)
    for (unsigned x = 0; x < 12; ++x)
      EXPECT_EQ(upright.dark(x, y), turned.dark(23 - y, x)) << x << ", " << y;
}

TEST(Lines, BeginAtTheRightIfTheyAreUpsideDown) {
  const Print upright(ascii("LF\n"));
  const Print turned(hex("1b7b01") + ascii("LF\n"));
  for (unsigned y = 0; y < 24; ++y)
    for (unsigned x = 0; x < 24; ++x)
      EXPECT_EQ(upright.dark(x, y), turned.dark(383 - x, 23 - y)) << x << ", " << y;
  EXPECT_EQ(turned.text(), "LF\n");
}

TEST(ReverseFeed, StopsAtTheBeginningOfThePaper) {
  const Print print(square + hex("1b4b 08 1d4c 6400") + square);
  EXPECT_EQ(print.darkIn(0, 0, 8, 8), 64U);
  EXPECT_EQ(print.darkIn(100, 0, 8, 8), 64U);
  EXPECT_EQ(Print(hex("1b65 ff") + square).darkIn(0, 0, 8, 8), 64U);
}

TEST(UserDefinedCharacters, AreDrawnWhileTheyAreSelected) {
  const Bytes define = hex("1b26 03 41 42 02 ffffff ffffff 02 800000 000001");
  const Print print(define + hex("1b2501") + ascii("AB\n") + hex("1b2500") + ascii("A\n"));
  EXPECT_EQ(print.darkIn(0, 0, 2, 24), 48U);
  EXPECT_EQ(print.row(0, 0, 5), "###..");
  EXPECT_EQ(print.row(23, 0, 5), "##.#.");
  EXPECT_NE(print.text().find("\nA\n"), std::string::npos);
  EXPECT_EQ(Print(define + hex("1b2501 1b3f41") + ascii("A\n")).text(), "A\n");
}

TEST(DownloadedImage, IsPrintedAtEachPrintCommandInTheGivenScale) {
  const Print print(hex("1d2a 01 01 ff00000000000000 1d2f00 1d2f03"));
  EXPECT_EQ(print.darkIn(0, 0, 8, 8), 8U);
  EXPECT_EQ(print.darkIn(0, 8, 16, 16), 32U);
}

TEST(NumberedImages, AreStoredAndPrintedByTheirNumbers) {
  const Print print(
      hex("1c71 02 0100 0100 ff00000000000000 0100 0100 ffff000000000000 1b40 1c70 02 00"));
  EXPECT_EQ(print.darkIn(0, 0, 8, 8), 16U);
  EXPECT_EQ(Print("1c70 09 00").text(), "[not shown: 1c 70 09 (1)]\n");
}

TEST(StoredGraphics, ArePrintedByTheirKeyUntilTheyAreErased) {
  const char* define = "1d284c 0c00 30 43 30 4142 01 0800 0100 31 ff";
  const char* print = "1d284c 0600 30 45 4142 01 02";
  EXPECT_EQ(Print(std::string(define) + "1b40" + print).darkIn(0, 0, 8, 2), 16U);
  EXPECT_EQ(Print(std::string(define) + "1d284c 0400 30 42 4142" + print).paper().items().size(),
            0U);
  EXPECT_EQ(Print("1d284c 0c00 30 53 30 4142 01 0800 0100 31 ff 1d284c 0600 30 55 4142 01 01")
                .darkIn(0, 0, 8, 1),
            8U);
}

TEST(StoredGraphics, AreDrawnInBlackAndGreyIfTheyHaveTwoColours) {
  const Print print(
      "1d284c 0b00 30 70 30 01 01 31 0800 0100 f0 "
      "1d284c 0b00 30 70 30 01 01 32 0800 0100 0f 1d284c 0200 30 32");
  EXPECT_GT(print.darkness(0, 0), 200U);
  EXPECT_LT(print.darkness(7, 0), 170U);
  EXPECT_GT(print.darkness(7, 0), 80U);
}

TEST(BitImage, IsDrawnAtAnyHeight) {
  const Print print("1d51 30 00 0200 0200 8001 ffff");
  EXPECT_EQ(print.row(0, 0, 3), "##.");
  EXPECT_EQ(print.row(15, 0, 3), "##.");
  EXPECT_EQ(print.row(7, 0, 3), ".#.");
}

TEST(BarcodeOfEveryKind, IsDrawnAndNamed) {
  const struct {
    const char* job;
    const char* text;
  } symbols[] = {
      {"1d286b 0500 30 50 30 6869 1d286b 0300 30 51 30", "[PDF417 hi]\n"},
      {"1d286b 0500 31 50 30 6869 1d286b 0300 31 51 30", "[QR code hi]\n"},
      {"1d286b 0400 31 41 33 00 1d286b 0500 31 50 30 3132 1d286b 0300 31 51 30",
       "[Micro QR code 12]\n"},
      {"1d286b 0500 32 50 30 6869 1d286b 0300 32 51 30", "[MaxiCode hi]\n"},
      {"1d286b 0500 35 50 30 6869 1d286b 0300 35 51 30", "[Aztec code hi]\n"},
      {"1d286b 0500 36 50 30 6869 1d286b 0300 36 51 30", "[DataMatrix hi]\n"},
      {"1d6b 4a 12 30313034303036333831333333393331 3132", "[GS1-128 (01)0400638133393112]\n"},
      {"1d6b 4b 0d 30343030363338313333333933", "[GS1 DataBar (01)04006381333931]\n"},
  };
  for (const auto& symbol : symbols) {
    const Print print(symbol.job);
    EXPECT_EQ(print.text(), symbol.text);
    EXPECT_GT(print.darkIn(0, 6, 380, 30), 100U) << symbol.text;
  }
}

TEST(CompositeSymbol, HasABarcodeAndATwoDimensionalPart) {
  const std::string more = "1d286b 0d00 34 50 30 31 41 2831302941424331";
  const std::string print = "1d286b 0300 34 51 30";
  const struct {
    const char* line;
    const char* text;
  } lines[] = {
      {"1d286b 0c00 34 50 30 30 41 31323334353637", "[GS1 Composite 12345670 (10)ABC1]\n"},
      {"1d286b 1100 34 50 30 30 42 343030363338313333333933",
       "[GS1 Composite 4006381333931 (10)ABC1]\n"},
      {"1d286b 1000 34 50 30 30 43 3031323334353637383930",
       "[GS1 Composite 012345678905 (10)ABC1]\n"},
      {"1d286b 0b00 34 50 30 30 44 313233343536", "[GS1 Composite 01234565 (10)ABC1]\n"},
      {"1d286b 1200 34 50 30 30 46 30343030363338313333333933",
       "[GS1 Composite (01)04006381333931 (10)ABC1]\n"},
      {"1d286b 0600 34 50 30 30 42 41", "[no GS1 Composite of (10)ABC1]\n"},
      {"1d286b 1700 34 50 30 30 4d 28303129 3034303036333831333333393331",
       "[GS1 Composite (01)04006381333931 (10)ABC1]\n"},
  };
  for (const auto& line : lines) {
    const Print printed(hex(line.line) + hex(more) + hex(print));
    EXPECT_EQ(printed.text(), line.text);
    EXPECT_EQ(Print(hex(more) + hex(line.line) + hex(print)).text(), line.text);
  }
  EXPECT_EQ(Print(hex(more) + hex(print)).text(), "[no GS1 Composite of (10)ABC1]\n");
  const Print printed(hex(lines[1].line) + hex(more) + hex(print));
  EXPECT_NE(printed.row(6, 0, 240), printed.row(60, 0, 240)) << "the part above the bars";
  EXPECT_EQ(printed.row(60, 0, 240), printed.row(80, 0, 240)) << "the bars";
}

TEST(QrCodeOfModel1, IsDrawnAsModel2AndRecorded) {
  const Print print("1d286b 0400 31 41 31 00 1d286b 0500 31 50 30 6869 1d286b 0300 31 51 30");
  EXPECT_EQ(print.text(), "[QR code hi]\n");
  ASSERT_EQ(print.paper().record().events().size(), 1U);
  EXPECT_EQ(print.paper().record().events()[0].kind, JobRecord::EventKind::Replaced);
  EXPECT_EQ(print.paper().record().events()[0].text,
            "a QR code of model 1 is drawn as one of model 2");
  EXPECT_TRUE(print.paper().record().isClean());
}

TEST(UndrawableBarcode, IsNamedInTheText) {
  EXPECT_EQ(Print("1d6b 43 03 313261").text(), "[no EAN-13 of 12a]\n");
}

TEST(PageMode, PrintsAPageWhenThePageEnds) {
  const Print print(hex("1b4c") + ascii("one\ntwo\n") + hex("0c") + ascii("after\n"));
  EXPECT_EQ(print.text(), "one\ntwo\nafter\n");
  EXPECT_EQ(Print(hex("1b4c") + ascii("lost\n") + hex("1b53") + ascii("kept\n")).text(), "kept\n");
  EXPECT_EQ(Print(hex("1b4c") + ascii("lost") + hex("0a 18") + ascii("kept\n") + hex("0c")).text(),
            "kept\n");
}

TEST(PageMode, CanPrintTheSamePageAgain) {
  EXPECT_EQ(Print(hex("1b4c") + ascii("a\n") + hex("1b0c 1b0c 1b53")).text(), "a\na\n");
}

TEST(PageMode, PrintsAnAreaAtItsPosition) {
  const Print print(hex("1b4c 1b57 6400 3200 6400 3200") + square + hex("0c"));
  EXPECT_EQ(print.darkIn(100, 50, 8, 8), 64U);
  EXPECT_EQ(print.darkIn(0, 0, 384, 100), 64U);
}

TEST(PageMode, PrintsAnAreaInEachOfFourDirections) {
  const std::pair<const char*, std::pair<unsigned, unsigned>> cornerOf[] = {
      {"00", {0, 0}}, {"01", {0, 92}}, {"02", {192, 92}}, {"03", {192, 0}}};
  for (const auto& [direction, corner] : cornerOf) {
    const Print print(hex("1b4c 1b57 0000 0000 c800 6400 1b54") + hex(direction) + square +
                      hex("0c"));
    EXPECT_EQ(print.darkIn(corner.first, corner.second, 8, 8), 64U) << direction;
    EXPECT_EQ(print.darkIn(0, 0, 384, 100), 64U) << direction;
  }
}

TEST(PageMode, MovesThePrintPositionUpAndDown) {
  const Print print(hex("1b4c 1d24 7c00") + square + hex("1d5c 9cff") + hex("1b24 6400") +
                    hex("1d24 1800") + square + hex("0c"));
  EXPECT_EQ(print.darkIn(0, 100, 8, 8), 64U);
  EXPECT_EQ(print.darkIn(100, 0, 8, 8), 64U);
}

TEST(PageMode, TakesBoundedMemory) {
  std::vector<Paper> papers;
  Session session;
  session.printer.keepJobs([&](Paper paper) { papers.push_back(std::move(paper)); });
  session.send("1b4c");
  const Bytes line = Bytes(2'000, 'x') + ascii("\n");
  for (int i = 0; i < 600; ++i)
    session.send(line);
  EXPECT_FALSE(papers.empty());
  session.send("1b40");
  for (int i = 0; i < 10'000; ++i)
    session.send("1b4c 1b57 0100 0100 0100 0100 41 1b0c");
  EXPECT_LT(session.printer.paper().weight(), heaviestPaper + 500'000);
}

TEST(CustomerDisplay, ShowsItsTextWithoutPrinting) {
  const Print print(hex("1b3d02") + ascii("Total 4.20\n") + hex("1b3d01") + ascii("paper\n"));
  EXPECT_EQ(print.text(), "paper\n");
  const auto& events = print.paper().record().events();
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].kind, JobRecord::EventKind::Display);
  EXPECT_EQ(events[0].text, "Total 4.20");
}

TEST(CustomerDisplay, SharesTextWithThePrinterIfBothAreSelected) {
  const Print print(hex("1b3d03") + ascii("both\n") + hex("1b3d00") + ascii("paper\n"));
  EXPECT_EQ(print.text(), "both\npaper\n");
  EXPECT_EQ(print.paper().record().events().at(0).text, "both");
}

TEST(CustomerDisplay, DoesNotShowTheParametersOfItsCommands) {
  const Print print(hex("1b3d02 1f24 4142 1f58 34 0c 1f43 31") + ascii("Total") +
                    hex("1b57 01 01 41424344 1b57 01 30") + ascii(" 4.20") + hex("1b3d01") +
                    ascii("paper\n"));
  EXPECT_EQ(print.text(), "paper\n");
  EXPECT_EQ(print.paper().record().events().at(0).text, "Total 4.20");
  EXPECT_TRUE(print.paper().record().isClean());
}

TEST(BarcodeSizeRequest, IsAnsweredForEachKindOfBarcode) {
  const struct {
    const char* stored;
    const char* ask;
    const char* reply;
  } symbols[] = {
      {"1d286b 0500 35 50 30 6869", "1d286b 0300 35 52 30", "3758 3435 1f 3435 1f 31 1f 3030 00"},
      {"1d286b 0500 36 50 30 6869", "1d286b 0300 36 52 30", "3759 3330 1f 3330 1f 31 1f 3030 00"},
      {"1d286b 0500 36 42 31 10 00 1d286b 0500 36 50 30 6869", "1d286b 0300 36 52 30",
       "3759 313038 1f 3438 1f 31 1f 3030 00"},
      {"1d286b 0500 36 42 30 16 16 1d286b 0500 36 50 30 6869", "1d286b 0300 36 52 30",
       "3759 3636 1f 3636 1f 31 1f 3030 00"},
      {"1d286b 0400 35 42 31 03 1d286b 0500 35 50 30 6869", "1d286b 0300 35 52 30",
       "3758 3639 1f 3639 1f 31 1f 3030 00"},
      {"", "1d286b 0300 36 52 30", "3759 30 1f 30 1f 31 1f 3131 00"},
      {"", "1d286b 0300 34 52 30", "3750 30 1f 30 1f 31 1f 31 00"},
  };
  for (const auto& symbol : symbols) {
    Session session;
    session.send(symbol.stored);
    EXPECT_EQ(session.ask(symbol.ask), hex(symbol.reply)) << symbol.stored;
  }
}

TEST(BarcodeSizeRequest, IsAnsweredInDots) {
  Session session;
  session.send("1d286b 0300 31 43 0a 1d286b 0500 31 50 30 6869");
  EXPECT_EQ(session.ask("1d286b 0300 31 52 30"), hex("3736 323130 1f 323130 1f 31 1f 30 00"));
  EXPECT_EQ(session.ask("1d286b 0300 30 52 30"), hex("372f 30 1f 30 1f 31 1f 31 00"))
      << "nothing is stored";
}

}  // namespace
}  // namespace quordalvane::simulator
