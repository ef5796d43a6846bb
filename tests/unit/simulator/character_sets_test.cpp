#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "simulator/CodePages.h"
#include "simulator/Profile.h"
#include "simulator/TextRendering.h"
#include "simulator/Utf8.h"
#include "simulator/drawing/ImageRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

class Print {
 public:
  explicit Print(const Bytes& job, const PrinterBuilder& printer = PrinterBuilder())
      : session_(printer) {
    session_.send(job);
  }

  const Paper& paper() const { return session_.printer.paper(); }

  /// The first line.
  std::string text() const {
    const std::string text = renderText(paper());
    return text.substr(0, text.find('\n'));
  }

  std::vector<std::string> missing() const {
    const auto& missing = paper().record().missing();
    return {missing.begin(), missing.end()};
  }

 private:
  Session session_;
};

PrinterBuilder profile(std::string_view name) {
  return PrinterBuilder().set("profile", name);
}

std::string inPage(int number, std::string_view bytes) {
  const Bytes select = {0x1b, 0x74, static_cast<std::uint8_t>(number)};
  return Print(select + hex(bytes) + ascii("\n"), profile("escpos-80")).text();
}

TEST(CodePages, ContainTheCharactersOfTheirStandards) {
  EXPECT_EQ(inPage(0, "82 9b e1 fb"), "é¢ß√");
  EXPECT_EQ(inPage(1, "b1 b2 dd a5 f1 e9"), "ｱｲﾝ･円♥");
  EXPECT_EQ(inPage(11, "a4 a5 80"), "ΑΒÇ");
  EXPECT_EQ(inPage(12, "86 9b e4 d5 f3"), "ĉĝĠıŉ");
  EXPECT_EQ(inPage(14, "80 98 97"), "ΑαΩ");
  EXPECT_EQ(inPage(16, "80 8a e9"), "€Šé");
  EXPECT_EQ(inPage(17, "80 a0 f1"), "Ааё");
  EXPECT_EQ(inPage(19, "d5 9b"), "€ø");
  EXPECT_EQ(inPage(21, "a1 d2 df"), "กา฿");
  EXPECT_EQ(inPage(32, "9f a0 ad"), "ابص");
  EXPECT_EQ(inPage(49, "e0 f9"), "אש");
}

TEST(CodePages, Page853ContainsAllLettersOfIso8859Part3) {
  const UpperHalf& page = upperHalfOf("853");
  for (const char32_t character : upperHalfOf("iso8859-3")) {
    EXPECT_NE(std::find(page.begin(), page.end(), character), page.end()) << unsigned(character);
  }
}

TEST(CodePages, ContainAtLeastFiftyCharactersEach) {
  for (const std::string& name : codePageNames()) {
    const UpperHalf& page = upperHalfOf(name);
    const auto there = 128 - std::count(page.begin(), page.end(), noCharacter);
    EXPECT_GE(there, name == "iso8859-6" ? 50 : name == "iso8859-8" ? 60 : 86) << name;
    EXPECT_EQ(std::count_if(page.begin(), page.end(), [](char32_t c) { return c < 0xa0; }), 0)
        << name;
  }
}

TEST(CodePages, PrintTheSameGlyphsAsUnicodeText) {
  for (const std::string& name : codePageNames()) {
    Bytes job = hex("1b7407");
    std::u32string characters;
    for (unsigned i = 0; i < 128; ++i) {
      const char32_t character = upperHalfOf(name)[i];
      if (character != noCharacter && !isWide(character) && characters.size() < 40) {
        job.push_back(static_cast<std::uint8_t>(0x80 + i));
        characters += character;
      }
    }
    const Picture printed = renderPicture(
        Print(job + ascii("\n"), profile("escpos-80").set("codePages", "7:" + name)).paper());
    Paper paper;
    paper.add(Line{{LineItem{0, TextRun{characters, TextStyle{}}}}});
    EXPECT_TRUE(printed.pixels == renderPicture(paper).pixels) << name;
  }
}

TEST(CodePages, HaveTheNumbersThatTheProfileGives) {
  const Bytes job = hex("1b7406 e0 0a");
  EXPECT_EQ(Print(job, profile("escpos-58")).text(), "а");
  EXPECT_EQ(Print(job, profile("escpos-80").set("codePages", "0:850+6:1253")).text(), "ΰ");
  EXPECT_EQ(Print(hex("9d 0a"), profile("escpos-80").set("codePages", "0:850")).text(), "Ø");
}

TEST(UnknownCodePage, IsIgnoredAndRecorded) {
  const Print print(hex("1b7413 1b74c8 d5 0a"), profile("escpos-80"));
  EXPECT_EQ(print.text(), "€");
  EXPECT_THAT(print.missing(), ElementsAre("page 200"));
  EXPECT_FALSE(print.paper().record().isClean());
}

TEST(ByteWithoutACharacter, IsListedInTheRecord) {
  EXPECT_THAT(Print(hex("1b7410 8182 0a"), profile("escpos-80")).missing(),
              ElementsAre("81 in page 16"));
  EXPECT_THAT(Print(hex("1b7410 8082 0a"), profile("escpos-80")).missing(), IsEmpty());
}

TEST(CodePageSetting, AcceptsOnlyNumbersWithKnownNames) {
  CharacterSets sets;
  for (const char* wrong : {"0", "x:437", "256:437", "0:438", "0:", ":437", "0:437,1:850"}) {
    EXPECT_THAT([&] { sets.setPages(wrong); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("NUMBER:NAME")))
        << wrong;
  }
  EXPECT_EQ(sets, CharacterSets());
  EXPECT_THROW(sets.setMultiByte("utf-8"), std::invalid_argument);
}

TEST(Utf8Text, IsRecognisedOnlyIfThePrinterSupportsUtf8) {
  for (const std::string_view name : profileNames()) {
    EXPECT_NE(Print(hex("c3 a9 0a"), profile(name)).text(), "é") << name;
  }
  EXPECT_EQ(Print(hex("c3 a9 0a")).text(), "├⌐");
  EXPECT_EQ(Print(hex("c3 a9 0a"), profile("escpos-80").set("utf8", "true")).text(), "é");
}

TEST(Utf8Text, IsSelectedAndDeselectedByCommands) {
  const PrinterBuilder knowsIt = profile("escpos-80").set("utf8", "true");
  EXPECT_EQ(Print(hex("1b7400 1c284302003002 c3a9 1c284302003001 c3a9 0a"), knowsIt).text(), "é├⌐");
  EXPECT_EQ(Print(hex("1c284302003002 c3a9 0a"), profile("escpos-80")).text(), "├⌐");
}

TEST(NationalCharacterSet, ReplacesSomeAsciiCharacters) {
  EXPECT_EQ(Print(hex("1b5202") + ascii("[\\]{|}~@\n")).text(), "ÄÖÜäöüß§");
  EXPECT_EQ(Print(hex("1b5203") + ascii("#\n")).text(), "£");
  EXPECT_EQ(Print(hex("1b5207") + ascii("#\\\n")).text(), "₧Ñ");
  EXPECT_EQ(Print(hex("1b5208") + ascii("\\ 1,000\n")).text(), "¥ 1,000");
  EXPECT_EQ(Print(hex("1b5202 1b5240") + ascii("[\n")).text(), "Ä") << "there is no set 40";
  EXPECT_EQ(Print(hex("1b5202 1b40") + ascii("[\n")).text(), "[");
}

TEST(MultiByteText, IsReadInEachLanguage) {
  EXPECT_EQ(Print(hex("93fa967b 0a"), profile("escpos-80-japan")).text(), "ô·û{")
      << "Japanese printers wait for a command";
  EXPECT_EQ(Print(hex("1c4301 93fa967b 41 0a"), profile("escpos-80-japan")).text(), "日本A");
  EXPECT_EQ(Print(hex("1c26 467c4b5c 1c2e 4142 0a"), profile("escpos-80-japan")).text(), "日本AB");
  EXPECT_EQ(Print(hex("d6d0b9fa 41 0a"), profile("escpos-80-china")).text(), "中国A");
  EXPECT_EQ(Print(hex("82358f33 41 0a"), profile("escpos-80-china")).text(), "龦A");
  EXPECT_EQ(Print(hex("a4a4b0ea 0a"), profile("escpos-80-taiwan")).text(), "中國");
  EXPECT_EQ(Print(hex("c7d1b1b9 0a"), profile("escpos-80-korea")).text(), "한국");
}

// Characters of two bytes are two letters wide, even if a code page also has them as narrow ones.
TEST(MultiByteText, IsDrawnWithTheSameGlyphsAsUnicodeText) {
  const struct {
    const char* language;
    const char* job;
    std::u32string_view characters;
  } texts[] = {
      {"japan", "1c4301 97cc8efb8f91 938c8b9e9373 897e", U"領収書東京都円"},
      {"china", "cad5bedd b1b1bea9cad0 82358f33 a2e3", U"收据北京市龦€"},
      {"taiwan", "a6acbeda bb4fa55fa5ab", U"收據臺北市"},
      {"korea", "bfb5bcf6c1f5 bcadbfefbdc3", U"영수증서울시"},
  };
  for (const auto& text : texts) {
    const Print print(hex(text.job) + ascii("\n"),
                      profile("escpos-80-" + std::string(text.language)));
    TextStyle style;
    style.wide = true;
    Paper paper;
    paper.add(Line{{LineItem{0, TextRun{std::u32string(text.characters), style}}}});
    EXPECT_TRUE(renderPicture(print.paper()).pixels == renderPicture(paper).pixels)
        << text.language << ": " << print.text();
  }
}

TEST(CodePages, PrintTheSameWideGlyphsAsUnicodeText) {
  const Print print(hex("1b7401 f1f2f3f4f5f6f7f9fafbfcfd 0a"), profile("escpos-80"));
  TextStyle style;
  style.wide = true;
  Paper paper;
  paper.add(Line{{LineItem{0, TextRun{U"円年月日時分秒市区町村人", style}}}});
  EXPECT_TRUE(renderPicture(print.paper()).pixels == renderPicture(paper).pixels) << print.text();
}

TEST(MultiByteText, EndsWhenACodePageIsSelected) {
  EXPECT_EQ(Print(hex("1c2e 1b7410 d6d0 0a"), profile("escpos-80-china")).text(), "ÖÐ");
}

TEST(MultiByteText, HasCharactersTwiceAsWideAsALetter) {
  const Print print(hex("d6d0b9fa 41 1b7400 0a"), profile("escpos-80-china"));
  const auto& line = std::get<Line>(print.paper().items().at(0));
  EXPECT_EQ(line.width(), 60U);
  EXPECT_EQ(line.items.at(1).x, 48U);
}

TEST(MultiByteText, HasItsOwnUnderlineAndSpacing) {
  const Print print(hex("1c2d02 1c53 0204 d6d0b9fa 41 0a"), profile("escpos-80-china"));
  const auto& line = std::get<Line>(print.paper().items().at(0));
  const auto& wide = std::get<TextRun>(line.items.at(0).content);
  const auto& narrow = std::get<TextRun>(line.items.at(1).content);
  EXPECT_EQ(wide.style.underline, 2);
  EXPECT_EQ(narrow.style.underline, 0);
  EXPECT_EQ(line.width(), 2U * (24 + 6) + 12);
}

TEST(MultiByteText, RecordsTheCharactersThatThePrinterLacks) {
  EXPECT_THAT(Print(hex("1c4301 fc4c 0a"), profile("escpos-80-japan")).missing(),
              ElementsAre("fc 4c in shift-jis"));
  EXPECT_THAT(Print(hex("d6 0a"), profile("escpos-80-china")).missing(),
              ElementsAre("d6 in gb18030"));
  EXPECT_EQ(Print(hex("d620 41 0a"), profile("escpos-80-china")).text(), "\ufffd A");
}

}  // namespace
}  // namespace quordalvane::simulator
