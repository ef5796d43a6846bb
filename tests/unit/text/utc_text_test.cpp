#include "text/UtcText.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using std::chrono::year;

std::string utc(std::chrono::system_clock::time_point time, int digitsOfSecond) {
  std::string text = "at ";
  appendUtc(text, time, digitsOfSecond);
  return text;
}

TEST(UtcText, TruncatesTheSecondToTheRequestedDigits) {
  const auto time = sys_days(year(2024) / 2 / 29) + 23h + 59min + 59s + 123999us;
  EXPECT_EQ(utc(time, 6), "at 2024-02-29T23:59:59.123999Z");
  EXPECT_EQ(utc(time, 3), "at 2024-02-29T23:59:59.123Z");
}

TEST(UtcText, ShowsTimesJustBeforeAndAtTheBeginningOf1970) {
  EXPECT_EQ(utc(sys_days(year(1970) / 1 / 1), 3), "at 1970-01-01T00:00:00.000Z");
  EXPECT_EQ(utc(sys_days(year(1970) / 1 / 1) - 1us, 6), "at 1969-12-31T23:59:59.999999Z");
}

}  // namespace
}  // namespace quordalvane
