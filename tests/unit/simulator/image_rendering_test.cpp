#include "simulator/drawing/ImageRendering.h"
#include "simulator/drawing/Plane.h"
#include "simulator/drawing/TextDrawing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "simulator/SymbolEncoding.h"
#include "tests/unit/simulator/Print.h"

namespace quordalvane::simulator {
namespace {

TEST(PaperPicture, IsAsWideAsThePaperWithItsMargins) {
  EXPECT_EQ(Print(ascii("x\n")).picture().width, 384U + 2 * Print::leftEdge);
  EXPECT_EQ(Print(ascii("x\n"), PrinterBuilder()).picture().width, 576U + 2 * Print::leftEdge);
}

TEST(PaperPicture, ContinuesAfterABarcodeWithANonAsciiText) {
  const Print print(ascii("text\n") + hex("1d4802 1d6b49 04 7b42e941") + ascii("text\n") +
                    hex("1d6b04 41 42 00") + ascii("last line\n"));
  constexpr unsigned barcode =
      162 + 24 + 3 * 6;  // the height with the text and the space around it
  EXPECT_GT(print.darkIn(0, 30 + 174, 100, 24), 30U) << "the first barcode's text";
  EXPECT_GT(print.darkIn(0, 30 + barcode, 60, 24), 50U) << "the text after it";
  EXPECT_GT(print.darkIn(0, 60 + barcode + 6, 100, 162), 1'000U) << "the second barcode";
  EXPECT_GT(print.darkIn(0, 60 + 2 * barcode, 120, 24), 50U) << "the last line";
}

TEST(DrawingPlane, ShowsTheTextAfterInvalidCharacters) {
  Plane plane(100, 24);
  drawText(plane, std::u32string{0xd800, 0xffffffe9, 0x110000, U'\0', U'X'}, TextStyle{}, 0, 0,
           Plane::ink);
  unsigned dark = 0;
  for (unsigned y = 0; y < 24; ++y)
    for (const std::uint8_t dot : plane.row(y).subspan(48, 12))
      dark += dot > 128 ? 1U : 0U;
  EXPECT_GT(dark, 20U);
}

TEST(DrawingPlane, IgnoresDotsOutsideItsArea) {
  Plane plane(10, 10);
  plane.fill(-5, -5, 10, 10, Plane::ink);
  plane.fill(8, 8, 1'000'000, 1'000'000, Plane::ink);
  plane.draw(Plane(20, 20), -100, 3, Plane::ink);
  EXPECT_EQ(plane.row(4)[4], Plane::ink);
  EXPECT_EQ(plane.row(5)[4], Plane::bare);
  EXPECT_EQ(plane.row(9)[9], Plane::ink);
}

TEST(PaperPicture, ShowsExactlyTheDotsOfARasterImage) {
  const Print print(hex("1d7630 00 0200 0200 a501 0ff0"));
  EXPECT_EQ(print.row(0, 0, 20), "#.#..#.#.......#....");
  EXPECT_EQ(print.row(1, 0, 20), "....########........");
  EXPECT_EQ(print.darkIn(0, 2, 384, 10), 0U);
}

TEST(PaperPicture, ScalesARasterImageAsTheCommandRequires) {
  const Print print(hex("1d7630 03 0100 0100 a0"));
  EXPECT_EQ(print.row(0, 0, 8), "##..##..");
  EXPECT_EQ(print.row(1, 0, 8), "##..##..");
  EXPECT_EQ(print.row(2, 0, 8), "........");
}

TEST(PaperPicture, ShowsTheColumnsOfABitImageFromTopToBottom) {
  const Print print(hex("1b2a 21 0300 800001 c00000 000000 0a"));
  EXPECT_EQ(print.row(0, 0, 4), "##..");
  EXPECT_EQ(print.row(1, 0, 4), ".#..");
  EXPECT_EQ(print.row(23, 0, 4), "#...");
}

TEST(PaperPicture, ShowsAStoredImageWithTheAlignmentInEffect) {
  const Print print(hex("1b6101 1d284c 0b00 30 70 30 01 01 31 0800 0100 99 1d284c 0200 30 32"));
  EXPECT_EQ(print.row(0, 188, 8), "#..##..#");
  EXPECT_EQ(print.darkIn(0, 0, 384, 4), 4U);
}

TEST(PaperPicture, ShowsTheDotsOfAnImageStoredByColumns) {
  const Print print(hex("1d284c 0c00 30 71 30 01 01 31 0200 0300 80 60 1d284c 0200 30 32"));
  EXPECT_EQ(print.row(0, 0, 3), "#..");
  EXPECT_EQ(print.row(1, 0, 3), ".#.");
  EXPECT_EQ(print.row(2, 0, 3), ".#.");
}

TEST(PaperPicture, HasNoGapBetweenStripesOfAnImage) {
  const Print print(hex("1b3318 1b2a 21 0100 ffffff 0a 1b2a 21 0100 ffffff 0a"));
  EXPECT_EQ(print.darkIn(0, 0, 1, 48), 48U);
}

TEST(PaperPicture, ShowsEachCharacterInItsCell) {
  const Print print(ascii("X X\n"));
  EXPECT_GT(print.darkIn(0, 0, 5, 24), 5U);
  EXPECT_GT(print.darkIn(7, 0, 5, 24), 5U);
  EXPECT_EQ(print.darkIn(12, 0, 12, 24), 0U);
  EXPECT_GT(print.darkIn(24, 0, 12, 24), 10U);
  EXPECT_EQ(print.darkIn(36, 0, 340, 24), 0U);
}

TEST(PaperPicture, ShowsBoldUnderlinedAndInverseText) {
  const std::size_t plain = Print(ascii("HM\n")).darkIn(0, 0, 24, 24);
  EXPECT_GT(Print(hex("1b4501") + ascii("HM\n")).darkIn(0, 0, 24, 24), plain);
  EXPECT_EQ(Print(hex("1b2d02") + ascii("HM\n")).darkIn(0, 22, 24, 2), 48U);
  const Print inverse(hex("1d4201") + ascii("HM\n"));
  EXPECT_GT(inverse.darkIn(0, 0, 24, 24), 24U * 24U / 2);
  EXPECT_LT(inverse.darkIn(0, 0, 24, 24), 24U * 24U);
}

TEST(PaperPicture, ShowsDoubleHeightAndDoubleWidth) {
  const Print print(hex("1d2111") + ascii("HH\n") + hex("1d2100") + ascii("H\n"));
  EXPECT_GT(print.darkIn(0, 24, 24, 20), 20U);
  EXPECT_GT(print.darkIn(24, 24, 24, 20), 20U);
  EXPECT_EQ(print.darkIn(48, 0, 100, 48), 0U);
  EXPECT_GT(print.darkIn(0, 48, 12, 24), 10U);
}

TEST(PaperPicture, FeedsByTheGivenNumberOfDots) {
  const Print print(hex("1b4a07 1d7630 00 0100 0100 ff"));
  EXPECT_EQ(print.darkIn(0, 0, 384, 7), 0U);
  EXPECT_EQ(print.darkIn(0, 7, 384, 1), 8U);
}

TEST(PaperPicture, ShowsFullAndPartialCutsDifferently) {
  const unsigned whole = Print(ascii("a\nb\n")).picture().height;
  const unsigned partly = Print(ascii("a\n") + hex("1d5601") + ascii("b\n")).picture().height;
  const unsigned apart = Print(ascii("a\n") + hex("1d5600") + ascii("b\n")).picture().height;
  EXPECT_LT(whole, partly);
  EXPECT_LT(partly, apart);
}

TEST(PaperPicture, ShowsABarcodeWithTheGivenHeightAndPosition) {
  // Code 39 begins with a star: bar, wide gap, bar, gap, wide bar, gap, wide bar, gap, bar. With
  // the gap after it, the star has 13 modules.
  const Print print(hex("1d6810 1d7702 1d6b 45 03 41 42 43"));
  const unsigned top = 6;
  EXPECT_EQ(print.row(top, 0, 2), "##");
  EXPECT_EQ(print.row(top, 2, 2), "..");
  EXPECT_EQ(print.row(top, 0, 300), print.row(top + 15, 0, 300));
  EXPECT_EQ(print.darkIn(0, top + 16, 384, 4), 0U);
}

TEST(PaperPicture, ShowsTheTextOfABarcodeAtTheGivenPlace) {
  const auto inkAround = [](const char* place) {
    const Print print(hex(place) + hex("1d6840 1d6b 45 03 41 42 43"));
    return std::pair{print.picture().height, print.darkIn(0, 6, 384, 24)};
  };
  const auto none = inkAround("1d4800");
  const auto above = inkAround("1d4801");
  const auto below = inkAround("1d4802");
  const auto both = inkAround("1d4803");
  EXPECT_EQ(above.first, none.first + 30);
  EXPECT_EQ(below.first, none.first + 30);
  EXPECT_EQ(both.first, none.first + 60);
  EXPECT_EQ(below.second, none.second);
  EXPECT_LT(above.second, none.second);
  EXPECT_GT(above.second, 0U);
}

TEST(BarcodeEncoder, AddsOrCorrectsTheCheckDigit) {
  const auto ean = [](const char* data) {
    Symbol barcode;
    barcode.symbology = Symbology::Ean13;
    barcode.data = data;
    return encode(barcode).value().text;
  };
  EXPECT_EQ(ean("400638133393"), "4006381333931");
  EXPECT_EQ(ean("4006381333931"), "4006381333931");
  EXPECT_EQ(ean("4006381333930"), "4006381333931");
}

TEST(BarcodeEncoder, EncodesANumberInUpcEOnlyIfTheNumberHasAShortForm) {
  const auto text = [](const char* data) {
    Symbol barcode;
    barcode.symbology = Symbology::UpcE;
    barcode.data = data;
    const auto symbol = encode(barcode);
    return symbol ? symbol->text : "refused";
  };
  const std::pair<const char*, const char*> shortened[] = {
      {"04210000526", "04252614"}, {"0425261", "04252614"},     {"425261", "04252614"},
      {"01230000045", "01234531"}, {"01234000005", "01234543"}, {"01234500006", "01234565"},
  };
  for (const auto& [data, shortForm] : shortened) {
    EXPECT_EQ(text(data), shortForm);
  }
  for (const char* const data : {"24210000526", "2425261", "04210001526", "01230000145",
                                 "01234000015", "01234500004", "01234567890"}) {
    EXPECT_EQ(text(data), "refused") << data;
  }
}

TEST(BarcodeEncoder, EncodesValidDataInEachSymbology) {
  const std::pair<Symbology, const char*> cases[] = {
      {Symbology::UpcA, "01234567890"},    {Symbology::UpcE, "0123456"},
      {Symbology::UpcE, "01234500006"},    {Symbology::UpcE, "01234567"},
      {Symbology::Ean13, "4006381333931"}, {Symbology::Ean8, "0123456"},
      {Symbology::Code39, "*ABC 12*"},     {Symbology::Interleaved, "0123456789"},
      {Symbology::Codabar, "A012345A"},    {Symbology::Code93, "012abcd"},
      {Symbology::Code128, "Ab1234{"},
  };
  for (const auto& [symbology, data] : cases) {
    Symbol barcode;
    barcode.symbology = symbology;
    barcode.data = data;
    const auto symbol = encode(barcode);
    ASSERT_TRUE(symbol.has_value()) << data;
    EXPECT_EQ(symbol->modules.height, 1U);
    EXPECT_GT(symbol->modules.width, 20U) << data;
    EXPECT_TRUE(symbol->modules.black(0, 0)) << data;
  }
}

Symbol qrCode(const std::string& data) {
  Symbol code;
  code.symbology = Symbology::Qr;
  code.data = data;
  return code;
}

TEST(BarcodeEncoder, ReturnsEmptyIfTheSymbologyCannotRepresentTheData) {
  Symbol barcode;
  barcode.symbology = Symbology::Ean13;
  barcode.data = "12a";
  EXPECT_FALSE(encode(barcode).has_value());
  barcode.data = "";
  EXPECT_FALSE(encode(barcode).has_value());
  EXPECT_FALSE(encode(qrCode("")).has_value());
}

TEST(BarcodeEncoder, AQrCodeIsSquareAndGrowsWithItsErrorCorrection) {
  Symbol code = qrCode("hello");
  const Bitmap low = encode(code).value().modules;
  ASSERT_EQ(low.width, 21U);
  ASSERT_EQ(low.height, 21U);
  unsigned fourth = 0;
  for (unsigned i = 0; i < 7; ++i) {
    EXPECT_TRUE(low.black(i, 0) && low.black(14 + i, 0) && low.black(i, 14) && low.black(0, i));
    fourth += low.black(14 + i, 14) ? 1U : 0U;
  }
  EXPECT_LT(fourth, 7U);
  code.data = std::string(14, 'x');
  const unsigned width = encode(code).value().modules.width;
  code.level = 4;
  EXPECT_GT(encode(code).value().modules.width, width);
}

TEST(PaperPicture, ShowsAQrCodeInTheGivenModuleSize) {
  const Print print(
      hex("1d286b 0300 31 43 04 1d286b 0800 31 50 30 68656c6c6f 1d286b 0300 31 51 30"));
  EXPECT_EQ(print.darkIn(0, 6, 28, 4), 28U * 4U);
  EXPECT_EQ(print.darkIn(28, 6, 4, 4), 0U);
}

TEST(PaperPicture, ListsOmittedCommandsBelowThePaper) {
  const unsigned without = Print(ascii("text\n")).picture().height;
  const Print with(hex("1c99") + ascii("text\n"));
  EXPECT_EQ(with.picture().height, without + 24 + 6);
  const Print withAnother(hex("1c98") + ascii("text\n"));
  EXPECT_NE(with.picture().pixels, withAnother.picture().pixels);
}

TEST(PaperPicture, ShowsALongPaperToItsEnd) {
  Bytes job;
  for (int i = 0; i < 700; ++i)
    job = std::move(job) + ascii("line\n");
  const Print print(job + hex("1d7630 00 0100 0100 ff"), PrinterBuilder().buffer(1U << 20U));
  EXPECT_GT(print.picture().height, 21'000U);
  EXPECT_EQ(print.darkIn(0, 21'000, 384, 1), 8U);
}

TEST(PaperPicture, IsASmallPngFileForALongEmptyPaper) {
  Paper paper(widePaperDots);
  paper.feed(100'000);
  const Bytes png = renderPng(paper);
  EXPECT_GT(png.size(), 1'000U);
  EXPECT_LT(png.size(), 1'000'000U) << "of 67 million dots";
}

TEST(PaperPicture, IsShortForEmptyPaper) {
  const Print print(Bytes{});
  EXPECT_GT(print.picture().height, 0U);
  EXPECT_LT(print.picture().height, 100U);
}

TEST(PaperPicture, CanBeEncodedAsAPngFile) {
  Session session;
  session.send(ascii("x\n"));
  const Bytes png = renderPng(session.printer.paper());
  ASSERT_GT(png.size(), 100U);
  EXPECT_EQ(Bytes(png.begin(), png.begin() + 8), hex("89504e47 0d0a1a0a"));
}

TEST(PictureDeathTest, IsDrawnOnAMachineWithoutFonts) {
#if defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the drawing library takes its own locks in another order if it finds no font";
#endif
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const std::string config = testing::TempDir() + "no_fonts.conf";
  std::ofstream(config) << "<?xml version=\"1.0\"?><fontconfig></fontconfig>";
  const auto render = [&config] {
    setenv("FONTCONFIG_FILE", config.c_str(), 1);
    const Print print(ascii("X X\n"));
    const bool readable = print.darkIn(0, 0, 12, 24) > 10 && print.darkIn(12, 0, 12, 24) == 0 &&
                          print.darkIn(24, 0, 12, 24) > 10;
    std::exit(readable ? 0 : 1);
  };
  EXPECT_EXIT(render(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quordalvane::simulator
