#include "text/LetterCase.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

TEST(LetterCase, OnlyAsciiLettersHaveALowerCase) {
  EXPECT_EQ(lowerCase("AZ az @[`{ 09 \xc3\x84"), "az az @[`{ 09 \xc3\x84");
}

TEST(LetterCase, TextsAreEqualIfOnlyTheirCaseDiffers) {
  EXPECT_TRUE(equalIgnoringCase("bt:Kitchen", "BT:kitchen"));
  EXPECT_TRUE(equalIgnoringCase("", ""));
  EXPECT_FALSE(equalIgnoringCase("BT:", "BT"));
  EXPECT_FALSE(equalIgnoringCase("[", "{"));
}

}  // namespace
}  // namespace quordalvane
