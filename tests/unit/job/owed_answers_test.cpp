#include "job/OwedAnswers.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kLineModeRequest = {0x1b, 0x2a, 0x72, 0x42, 0x1b, 0x1d, 0x03,
                                0x04, 0x00, 0x00, 0x1b, 0x06, 0x01};
const Bytes kBlock = {0x89, 1, 0x80, 0x81, 0x82, 0, 0, 0, 5};

TEST(OwedAnswers, AreOwedFromTheRequestToTheEndOfTheBlockHoweverBothAreCut) {
  OwedAnswers answers(ZKEmulationQuorLine);
  EXPECT_FALSE(answers.isAnyOwed());
  for (const auto byte : kLineModeRequest) {
    EXPECT_FALSE(answers.isAnyOwed());
    answers.written(Bytes{byte});
  }
  for (const auto byte : kBlock) {
    EXPECT_TRUE(answers.isAnyOwed());
    answers.read(Bytes{byte});
  }
  EXPECT_FALSE(answers.isAnyOwed());
  EXPECT_EQ(answers.last(), kBlock);
}

TEST(OwedAnswers, AreCountedOneByOne) {
  OwedAnswers answers(ZKEmulationQuorLine);
  for (int i = 0; i < 3; ++i) {
    answers.written(kLineModeRequest);
  }
  answers.read(kBlock);
  answers.read(kBlock);
  EXPECT_TRUE(answers.isAnyOwed());
  answers.read(kBlock);
  EXPECT_FALSE(answers.isAnyOwed());
}

TEST(OwedAnswers, ThatCameUnaskedPayForNothingOnceForgotten) {
  OwedAnswers answers(ZKEmulationQuorLine);
  answers.read(kBlock);
  answers.written(kLineModeRequest);
  EXPECT_FALSE(answers.isAnyOwed());
  answers.written(kLineModeRequest);
  answers.forgetSurplus();
  EXPECT_TRUE(answers.isAnyOwed()) << "what is owed is not forgotten";
  answers.read(kBlock);
  answers.read(kBlock);
  answers.forgetSurplus();
  answers.written(kLineModeRequest);
  EXPECT_TRUE(answers.isAnyOwed());
}

TEST(OwedAnswers, AreNotPaidByBytesOfAnotherKind) {
  OwedAnswers answers(ZKEmulationQuorLine);
  answers.written(kLineModeRequest);
  answers.read(Bytes{0x00, 0x09, 0x81, 0xc9});
  EXPECT_TRUE(answers.isAnyOwed());
  EXPECT_TRUE(answers.isAnyOdd());
  EXPECT_TRUE(answers.last().empty());
  answers.read(kBlock);
  EXPECT_FALSE(answers.isAnyOwed());
}

TEST(OwedAnswers, InESCPOSAreSingleBytesOutsideOfReports) {
  OwedAnswers answers(ZKEmulationESCPOS);
  for (const std::uint8_t query : Bytes{1, 2, 4}) {
    answers.written(Bytes{0x10, 0x04, query});
  }
  answers.read(Bytes{0x12, 0x1b, 0x1d, 0x03, 0x01});
  answers.read(Bytes{0x00, 0x00, 0x12, 0x12, 0x16});
  EXPECT_TRUE(answers.isAnyOwed());
  EXPECT_FALSE(answers.isAnyOdd());
  answers.read(Bytes{0x1a});
  EXPECT_FALSE(answers.isAnyOwed());
  EXPECT_EQ(answers.last(), Bytes{0x1a});
}

}  // namespace
}  // namespace quordalvane
