#include "job/EscPosAnswers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "tests/support/Bytes.h"

namespace quordalvane {
namespace {

using test::bytes;

/// The answers that a printer's bytes hold.
EscPosAnswers answersIn(const test::Bytes& sent) {
  EscPosAnswers answers;
  answers.feed(sent);
  return answers;
}

TEST(EscPosAnswers, AreRecognisedInPiecesOfAnySize) {
  const auto stream = bytes(
      "12 10 00 00 00 13 37 22 36 32 11 41 7e 00 05 1b 1d 03 01 00 00 13 00 37 25 00 5f 41 42 00");
  for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
    EscPosAnswers answers;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      answers.feed(ByteView(stream).subspan(at, std::min(piece, stream.size() - at)));
    }
    EXPECT_EQ(answers.lastRealTimeStatus(), 0x12);
    EXPECT_EQ(answers.inOrderCount(), 1U) << "05 alone";
    EXPECT_EQ(answers.lastReport(), 0x13);
    EXPECT_TRUE(answers.hasNamed({0x36, 0x32, 0x41, 0x7e}));
  }
}

TEST(EscPosAnswers, DistinguishTheProcessIdsOfTwoJobs) {
  EscPosAnswers answers;
  answers.feed(bytes("37 22 41 42 43 44 00"));
  EXPECT_TRUE(answers.hasNamed({'A', 'B', 'C', 'D'}));
  EXPECT_FALSE(answers.hasNamed({'A', 'B', 'C', 'E'}));
}

TEST(EscPosAnswers, OmitOnlyAByteThatBeginsNoAnswer) {
  EXPECT_EQ(answersIn(bytes("1d 00 00 00")).inOrderCount(), 3U);
  EXPECT_EQ(answersIn(bytes("10 12")).realTimeCount(), 1U) << "no status of four bytes";
  for (const char* const odd : {"1d", "10 12", "37 41", "37 25 01", "37 22 1f", "37 22 7f",
                                "37 22 41 42 43 44 45", "1b 1d 03 01 00 01", "5f 41 1f"}) {
    EXPECT_TRUE(answersIn(bytes(odd)).isAnyOdd()) << odd;
  }
  EXPECT_FALSE(answersIn(bytes("37 22 41 42 43 44 45")).hasNamed({'A', 'B', 'C', 'D'}));
}

TEST(EscPosAnswers, RememberTheLastSixteenProcessIds) {
  EscPosAnswers answers;
  for (std::uint8_t i = 0; i < 17; ++i) {
    answers.feed(test::Bytes{0x37, 0x22, 0x20, 0x20, 0x20, static_cast<std::uint8_t>('A' + i), 0});
  }
  EXPECT_FALSE(answers.hasNamed({0x20, 0x20, 0x20, 'A'}));
  for (std::uint8_t i = 1; i < 17; ++i) {
    EXPECT_TRUE(answers.hasNamed({0x20, 0x20, 0x20, static_cast<std::uint8_t>('A' + i)})) << i;
  }
}

TEST(EscPosAnswers, AcceptATextOfAtMost79Characters) {
  for (const std::size_t length : {79U, 80U}) {
    test::Bytes text = {0x5f};
    text.insert(text.end(), length, '~');
    text.push_back(0);
    EXPECT_EQ(answersIn(text).isAnyOdd(), length == 80) << length;
  }
}

TEST(EscPosAnswers, ReturnTheCountOfTheLastCompleteReport) {
  EXPECT_EQ(answersIn(bytes("12 1b 1d 03 01 00 00 01 00 12")).lastReport(), 1);
  EXPECT_EQ(answersIn(bytes("1b 1b 1d 03 01 00 00 01 00")).lastReport(), 1);
  EXPECT_EQ(answersIn(bytes("1b 1d 03 01 00 00 01 00 1b 1d 03 01 00 00 1b 00")).lastReport(), 0x1b);
  EXPECT_EQ(answersIn(bytes("1b 1d 03 01 00 00 01")).lastReport(), std::nullopt);
}

TEST(EscPosAnswers, IgnoreAReportWithAWrongByte) {
  for (std::size_t place : {1U, 2U, 3U, 4U, 5U, 7U}) {
    auto report = bytes("1b 1d 03 01 00 00 01 00");
    report[place] ^= 0x40;
    EXPECT_FALSE(answersIn(report).lastReport()) << place;
  }
}

TEST(EscPosAnswers, RecogniseAReportWithFlowControlBytesInside) {
  for (std::size_t place : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U}) {
    auto report = bytes("1b 1d 03 01 00 00 02 00");
    report.insert(report.begin() + static_cast<std::ptrdiff_t>(place), {0x13, 0x11});
    EXPECT_EQ(answersIn(report).lastReport(), 2) << place;
  }
}

}  // namespace
}  // namespace quordalvane
