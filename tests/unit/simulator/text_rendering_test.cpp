#include "simulator/TextRendering.h"

#include <gtest/gtest.h>

#include "simulator/Utf8.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

std::string printed(const Bytes& job,
                    const PrinterBuilder& printer = PrinterBuilder().narrowPaper()) {
  Session session(printer);
  session.send(job);
  return renderText(session.printer.paper());
}

PrinterBuilder thatKnowsUtf8() {
  return PrinterBuilder().narrowPaper().set("utf8", "true");
}

struct Job {
  const char* what;
  Bytes bytes;
  const char* text;
};

// Narrow paper has 32 columns.
std::vector<Job> jobs() {
  return {
      {"lines", ascii("one\ntwo\n"), "one\ntwo\n"},
      {"a return before the line feed adds nothing", ascii("one\r\ntwo\r\n"), "one\ntwo\n"},
      {"empty lines", ascii("one\n\n\ntwo\n"), "one\n\n\ntwo\n"},
      {"a long line continues below", ascii("12345678901234567890123456789012abc\n"),
       "12345678901234567890123456789012\nabc\n"},
      {"double width has half the columns", hex("1d2110") + ascii("12345678901234567\n"),
       "1234567890123456\n7\n"},
      {"the small font has more",
       hex("1b4d01") + ascii("123456789012345678901234567890123456789012\n"),
       "123456789012345678901234567890123456789012\n"},
      {"centred", hex("1b6101") + ascii("middle\n"), "             middle\n"},
      {"to the right", hex("1b6102") + ascii("end\n"), "                             end\n"},
      {"to the right, then back", hex("1b6132") + ascii("x\n") + hex("1b6100") + ascii("y\n"),
       "                               x\ny\n"},
      {"tabs", ascii("a\tb\tc\n"), "a       b       c\n"},
      {"an absolute position", ascii("a") + hex("1b24 7800") + ascii("b\n"), "a         b\n"},
      {"a relative position", ascii("a") + hex("1b5c 1800") + ascii("b\n"), "a  b\n"},
      {"a feed of lines in ESC/POS", hex("1b6100") + ascii("a\n") + hex("1b6403") + ascii("b\n"),
       "a\n\n\n\nb\n"},
      {"a feed of dots", ascii("a\n") + hex("1b4a3c") + ascii("b\n"), "a\n\n\nb\n"},
      {"a very long feed is reported", ascii("a\n") + hex("1b4aff 1b4aff 1b4aff") + ascii("b\n"),
       "a\n[feed 95 mm]\nb\n"},
      {"a full cut", ascii("a\n") + hex("1d5600") + ascii("b\n"),
       "a\n- - cut - - - - - - - - - - - -\nb\n"},
      {"a partial cut", hex("1d5601"), "- - partial cut - - - - - - - -\n"},
      {"a cut after a feed", ascii("a\n") + hex("1d564100"),
       "a\n\n\n\n- - cut - - - - - - - - - - - -\n"},
      {"a line-mode cut", ascii("a\n") + hex("1b6400"), "a\n- - cut - - - - - - - - - - - -\n"},
      {"a line-mode partial cut after a feed", ascii("a\n") + hex("1b6403"),
       "a\n\n\n\n- - partial cut - - - - - - - -\n"},
      {"four lines are a feed in line mode as well", ascii("a\n") + hex("1b6404") + ascii("b\n"),
       "a\n\n\n\n\nb\n"},
      {"a job that ends lets the next one be of line mode",
       hex("1b6100") + ascii("a\n") + hex("17 1b6401"), "a\n- - partial cut - - - - - - - -\n"},
      {"a form feed", ascii("a") + hex("0c") + ascii("b\n"), "a\n\n\n\nb\n"},
      {"a line without an end is shown when another element begins", ascii("a") + hex("1d5600"),
       "a\n- - cut - - - - - - - - - - - -\n"},
      {"a raster image", hex("1d7630 00 0200 0300 ffffffffffff"), "[image 16 x 3 dots]\n"},
      {"an image in stripes",
       hex("1b2a 00 0400 01020304 0a 1b2a 00 0400 05060708 0a") + ascii("x\n"),
       "[image 8 x 48 dots]\nx\n"},
      {"a stored image",
       hex("1d284c 0b00 30 70 30 01 01 31 0800 0100 ff") + hex("1d284c 0200 30 32"),
       "[image 8 x 1 dots]\n"},
      {"a stored image that is scaled, by the long form",
       hex("1d384c 0b000000 30 70 30 02 02 31 0800 0100 ff") + hex("1d384c 02000000 30 02"),
       "[image 16 x 2 dots]\n"},
      {"bar codes", hex("1d6b 02 343030363338313333333933 00 1d6b 45 03 41 42 43"),
       "[EAN-13 4006381333931]\n[Code 39 ABC]\n"},
      {"a bar code that names its code sets", hex("1d6b 49 09 7b42 4162 7b43 0c22 7b7b"),
       "[Code 128 Ab1234{]\n"},
      {"bar codes that do not exist", hex("1d6b07 1d6b08 1d6b40 1d6b50") + ascii("x\n"),
       "x\n[not shown: 1d 6b 07 (1) 1d 6b 08 (1) 1d 6b 40 (1) 1d 6b 50 (1)]\n"},
      {"a QR code", hex("1d286b 0800 31 50 30 68656c6c6f 1d286b 0300 31 51 30"),
       "[QR code hello]\n"},
      {"a two-dimensional code at once",
       hex("1d5a02 1b5a 034c06 0200 6869 1d5a01 1b5a 000004 0200 6869 1d5a00 1b5a 020102 0200 6869 "
           "1d5a07 1b5a 000000 0200 6869"),
       "[QR code hi]\n[DataMatrix hi]\n[PDF417 hi]\n[not shown: 1b 5a 00 (1)]\n"},
      {"turning off what the printer lacks changes nothing", hex("1c2e 1c4330 1c2d01 1c53 0000"),
       ""},
      {"bytes that would act on a terminal are data", hex("1d6b 49 03 1b 5b 4d"),
       "[Code 128 .[M]\n"},
      {"what cannot be shown is skipped and listed",
       hex("1d7c01") + ascii("a\n") + hex("1d7c00 1c62"),
       "a\n[not shown: 1c 62 (1) 1d 7c 00 (1) 1d 7c 01 (1)]\n"},
  };
}

TEST(ReceiptAsText, ShowsTheEffectOfEachCommand) {
  for (const Job& job : jobs())
    EXPECT_EQ(printed(job.bytes), job.text) << job.what;
}

TEST(ReceiptAsText, IsTheSameIfTheJobArrivesInPieces) {
  for (const Job& job : jobs()) {
    for (std::size_t at = 0; at <= job.bytes.size(); ++at) {
      Session session(PrinterBuilder().narrowPaper());
      const auto middle = job.bytes.begin() + static_cast<std::ptrdiff_t>(at);
      session.send(Bytes(job.bytes.begin(), middle));
      session.send(Bytes(middle, job.bytes.end()));
      EXPECT_EQ(renderText(session.printer.paper()), job.text) << job.what << ", split at " << at;
    }
  }
}

TEST(ReceiptAsText, Has48ColumnsOnWidePaper) {
  EXPECT_EQ(printed(Bytes(49, 'x') + ascii("\n"), PrinterBuilder()),
            std::string(48, 'x') + "\nx\n");
}

TEST(ReceiptAsText, InitialisationResetsTheFormatOfEarlierText) {
  EXPECT_EQ(printed(hex("1b6102 1d2111 1b3300") + hex("1b40") + ascii("a\n\nb\n")), "a\n\nb\n");
}

TEST(ReceiptAsText, InitialisationDeletesAStoredImage) {
  EXPECT_EQ(printed(hex("1d284c 0b00 30 70 30 01 01 31 0800 0100 ff 1b40 1d284c 0200 30 32")), "");
}

TEST(ReceiptAsText, ListsNoMoreThanAHundredKindsOfCommands) {
  Session session;
  for (int n = 0; n < 256; ++n)
    session.send(Bytes{0x1d, 0x7c, static_cast<std::uint8_t>(n)});
  EXPECT_EQ(session.printer.paper().skipped().size(), 101U);
  EXPECT_EQ(session.printer.paper().skipped().at("others"), 156U);
}

TEST(ReceiptAsText, ShowsOneCutForSeveralCutsAtOnePlace) {
  const std::string once = printed(ascii("a\n") + hex("1d56 00"));
  EXPECT_EQ(printed(ascii("a\n") + hex("1d56 00 1d56 01 1d56 00")), once);
  EXPECT_EQ(printed(ascii("a\n") + hex("1d56 01 1d56 00")), once);
  EXPECT_NE(printed(ascii("a\n") + hex("1d56 01 1d56 01")), once);
}

TEST(PrintedText, IsReadAsCodePage437UnlessItIsUtf8AndThePrinterSupportsUtf8) {
  EXPECT_EQ(printed(ascii("Caf\xc3\xa9 5 \xe2\x82\xac\n"), thatKnowsUtf8()), "Café 5 €\n");
  EXPECT_EQ(printed(hex("43 61 66 82 20 9c 35 0a"), thatKnowsUtf8()), "Café £5\n");
  EXPECT_EQ(printed(ascii("Caf\xc3\xa9\n")), "Caf├⌐\n");
  EXPECT_EQ(printed(hex("da c4 c4 bf 0a c0 c4 c4 d9 0a c9 cd cd bb 0a")), "┌──┐\n└──┘\n╔══╗\n");
}

TEST(Utf8Conversion, ReplacesInvalidBytesAndCharacters) {
  EXPECT_EQ(fromUtf8("A\x7f\u00e9\u20ac\U0001f600"), U"A\x7f\u00e9\u20ac\U0001f600");
  EXPECT_EQ(fromUtf8("\xe9"
                     "A\xe2\x82"),
            U"\ufffdA\ufffd\ufffd");
  EXPECT_EQ(fromUtf8("\xed\xa0\x80"), U"\ufffd\ufffd\ufffd");
  EXPECT_EQ(toUtf8(std::u32string{0xd800, 0x110000, 0xffffffe9, U'A'}),
            "\ufffd\ufffd\ufffd"
            "A");
}

TEST(PrintedText, IsReadInTheSelectedCodePage) {
  EXPECT_EQ(printed(hex("1b7410 80 e9 0a")), "€é\n");
  EXPECT_EQ(printed(hex("1b7413 d5 82 0a")), "€é\n");
  EXPECT_EQ(printed(hex("1b7400 c3 a9 0a"), thatKnowsUtf8()), "├⌐\n");
  EXPECT_EQ(printed(hex("1b7400 1b40 c3 a9 0a"), thatKnowsUtf8()), "é\n");
}

TEST(PrintedText, IsReadAsBeforeIfAnUnknownCodePageIsSelected) {
  EXPECT_EQ(printed(hex("1b7410 1b74 ff e9 0a")), "é\n[not shown: 1b 74 ff (1)]\n");
}

TEST(PrintedText, IsNotDividedInsideACharacter) {
  std::string run;
  for (int i = 0; i < 500; ++i)
    run += "€";
  std::string lines = printed(ascii(run + "\n"), thatKnowsUtf8());
  std::erase(lines, '\n');
  EXPECT_EQ(lines, run);
}

TEST(PrintedText, ContainsNoControlCharacter) {
  EXPECT_EQ(printed(hex("c2 9b 33 31 6d 0a"), thatKnowsUtf8()), "┬¢31m\n");
  EXPECT_EQ(printed(hex("41 7f 42 0a")), "A⌂B\n");
}

}  // namespace
}  // namespace quordalvane::simulator
