#include "job/OwedAnswers.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes lineModeRequest = {0x1b, 0x2a, 0x72, 0x42, 0x1b, 0x1d, 0x03,
                               0x04, 0x00, 0x00, 0x1b, 0x06, 0x01};
const Bytes statusBlock = {0x89, 1, 0x80, 0x81, 0x82, 0, 0, 0, 5};

TEST(OwedAnswers, AreOwedFromTheEndOfTheRequestToTheEndOfTheAnswer) {
  OwedAnswers answers(ZKEmulationQuorLine);
  EXPECT_FALSE(answers.isAnyOwed());
  for (const auto byte : lineModeRequest) {
    EXPECT_FALSE(answers.isAnyOwed());
    answers.written(Bytes{byte});
  }
  for (const auto byte : statusBlock) {
    EXPECT_TRUE(answers.isAnyOwed());
    answers.read(Bytes{byte});
  }
  EXPECT_FALSE(answers.isAnyOwed());
  EXPECT_EQ(answers.last(), statusBlock);
}

TEST(OwedAnswers, AreCountedForEachRequest) {
  OwedAnswers answers(ZKEmulationQuorLine);
  for (int i = 0; i < 3; ++i) {
    answers.written(lineModeRequest);
  }
  answers.read(statusBlock);
  answers.read(statusBlock);
  EXPECT_TRUE(answers.isAnyOwed());
  answers.read(statusBlock);
  EXPECT_FALSE(answers.isAnyOwed());
}

TEST(OwedAnswers, AreNotReducedBySurplusAnswersThatWereForgotten) {
  OwedAnswers answers(ZKEmulationQuorLine);
  answers.read(statusBlock);
  answers.written(lineModeRequest);
  EXPECT_FALSE(answers.isAnyOwed());
  answers.written(lineModeRequest);
  answers.forgetSurplus();
  EXPECT_TRUE(answers.isAnyOwed()) << "owed answers are not forgotten";
  answers.read(statusBlock);
  answers.read(statusBlock);
  answers.forgetSurplus();
  answers.written(lineModeRequest);
  EXPECT_TRUE(answers.isAnyOwed());
}

TEST(OwedAnswers, IgnoreBytesThatAreNoStatusBlock) {
  OwedAnswers answers(ZKEmulationQuorLine);
  answers.written(lineModeRequest);
  answers.read(Bytes{0x00, 0x09, 0x81, 0xc9});
  EXPECT_TRUE(answers.isAnyOwed());
  EXPECT_TRUE(answers.isAnyOdd());
  EXPECT_TRUE(answers.last().empty());
  answers.read(statusBlock);
  EXPECT_FALSE(answers.isAnyOwed());
}

TEST(OwedAnswers, InEscPosAreSingleBytesThatBelongToNoBlockReport) {
  OwedAnswers answers(ZKEmulationESCPOS);
  for (const std::uint8_t query : Bytes{1, 2, 4}) {
    answers.written(Bytes{0x10, 0x04, query});
  }
  answers.read(Bytes{0x12, 0x1b, 0x1d, 0x03, 0x01});
  answers.read(Bytes{0x00, 0x00, 0x12, 0x00, 0x16});
  EXPECT_TRUE(answers.isAnyOwed());
  EXPECT_FALSE(answers.isAnyOdd());
  answers.read(Bytes{0x1a});
  EXPECT_FALSE(answers.isAnyOwed());
  EXPECT_EQ(answers.last(), Bytes{0x1a});
}

TEST(OwedAnswers, IgnoreTheCharactersOfAProcessIdInEscPos) {
  OwedAnswers answers(ZKEmulationESCPOS);
  answers.written(Bytes{0x10, 0x04, 0x01});
  for (const std::uint8_t byte : Bytes{0x37, 0x22, '2', '6', '2', '6', 0x00}) {
    answers.read(Bytes{byte});
    EXPECT_TRUE(answers.isAnyOwed());
  }
  answers.read(Bytes{0x10, 0x00, 0x0c, 0x00});
  EXPECT_TRUE(answers.isAnyOwed()) << "nor by a status that was not asked for";
  answers.read(Bytes{0x12});
  EXPECT_FALSE(answers.isAnyOwed());
  EXPECT_FALSE(answers.isAnyOdd());
}

}  // namespace
}  // namespace quordalvane
