#include "iphone-IOPort/LogStatement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <memory>

#include "tests/unit/logging/LogFixtures.h"
#include "tests/unit/port/Descriptions.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

enum Plain { plainOne = 1 };
enum class Scoped : std::int8_t { Negative = -2 };

// Returns true if the format fits arguments of these types. A log statement with any other format
// must not compile.
template <typename... Arguments>
constexpr bool fitsFormat(std::string_view format) {
  return LogFormatPieces<Arguments...>(format).fits;
}

static_assert(fitsFormat<>("no conversion"));
static_assert(!fitsFormat<>("100 %%"), "no statement needs one");
static_assert(!fitsFormat<>("%d"), "one argument too few");
static_assert(!fitsFormat<int>("none"), "one argument too many");
static_assert(!fitsFormat<int>("%d, %d"));
static_assert(!fitsFormat<int>("%"), "a lone sign at the end");
static_assert(!fitsFormat<int>("%l"));
static_assert(!fitsFormat<int>("%x"), "an unknown conversion");
static_assert(!fitsFormat<int>("% d"));
static_assert(!fitsFormat<int>("%lld"));
static_assert(fitsFormat<int, unsigned, long, std::size_t>("%d%u%ld%lu"));
static_assert(fitsFormat<bool, Plain, Scoped, char>("%d%d%d%d"));
static_assert(!fitsFormat<int>("%f") && !fitsFormat<int>("%p") && !fitsFormat<int>("%@"));
static_assert(fitsFormat<float>("%f") && fitsFormat<double>("%f") && !fitsFormat<double>("%d"));
static_assert(fitsFormat<int*>("%p") && fitsFormat<std::shared_ptr<int>>("%p"));
static_assert(fitsFormat<std::unique_ptr<std::uint8_t[]>>("%p"));
static_assert(!fitsFormat<int*>("%@") && !fitsFormat<int*>("%d") && !fitsFormat<int*>("%lu"));
static_assert(fitsFormat<std::string>("%@") && !fitsFormat<std::string>("%p"));
static_assert(fitsFormat<std::optional<std::string>>("%@"));
static_assert(fitsFormat<const char*>("%@") && fitsFormat<const char*>("%p"));
static_assert(fitsFormat<std::nullptr_t>("%@") && fitsFormat<std::nullptr_t>("%p"));
static_assert(fitsFormat<std::vector<std::string>>("%@"));
static_assert(fitsFormat<std::vector<std::uint8_t>>("%@"));
static_assert(fitsFormat<std::optional<std::vector<std::uint8_t>>>("%@"));

TEST(FormatMessage, ShowsTheLow32BitsOfAnInteger) {
  EXPECT_EQ(formatMessage("%d", 42), "42");
  EXPECT_EQ(formatMessage("%d", -1), "-1");
  EXPECT_EQ(formatMessage("%d", 4294967295U), "-1");
  EXPECT_EQ(formatMessage("%d", std::int64_t{0x100000005}), "5");
  EXPECT_EQ(formatMessage("%d", std::numeric_limits<std::int32_t>::min()), "-2147483648");
  EXPECT_EQ(formatMessage("%u", -1), "4294967295");
  EXPECT_EQ(formatMessage("%u", std::uint8_t{200}), "200");
  EXPECT_EQ(formatMessage("%d, %d", true, false), "1, 0");
  EXPECT_EQ(formatMessage("%d, %d", plainOne, Scoped::Negative), "1, -2");
}

TEST(FormatMessage, ShowsAll64BitsOfALongInteger) {
  EXPECT_EQ(formatMessage("%ld", -2), "-2");
  EXPECT_EQ(formatMessage("%ld", 4294967295U), "4294967295");
  EXPECT_EQ(formatMessage("%ld", std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(formatMessage("%lu", -2), "18446744073709551614");
  EXPECT_EQ(formatMessage("%lu", std::size_t{512}), "512");
}

TEST(FormatMessage, ShowsFloatingPointNumbersWithSixDecimals) {
  EXPECT_EQ(formatMessage("%f", 10.3), "10.300000");
  EXPECT_EQ(formatMessage("%f", 0.05F), "0.050000");
  EXPECT_EQ(formatMessage("%f", -0.0000004), "-0.000000");
  EXPECT_EQ(formatMessage("%f", std::nan("")), "nan");
  EXPECT_EQ(formatMessage("%f", -HUGE_VAL), "-inf");
}

TEST(FormatMessage, ShowsAllDigitsOfTheLongestFloatingPointNumber) {
  const std::string text = formatMessage("%f", std::numeric_limits<double>::lowest());
  EXPECT_EQ(text.size(), 317U);
  EXPECT_TRUE(text.starts_with("-17976931348623157") && text.ends_with(".000000")) << text;
}

class DecimalComma : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
};

TEST(FormatMessage, ShowsADecimalPointInAnyLocale) {
  std::setlocale(LC_NUMERIC,
                 "de_DE.UTF-8");  // changes nothing if the machine has no such locale
  const std::locale former =
      std::locale::global(std::locale(std::locale::classic(), new DecimalComma));
  const std::string text = formatMessage("%f", 1.5);
  std::locale::global(former);
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(text, "1.500000");
}

TEST(FormatMessage, ShowsPointersAsAddresses) {
  const auto* pointer = reinterpret_cast<const int*>(std::uintptr_t{0x7ffeabc0});
  EXPECT_EQ(formatMessage("%p", pointer), "0x7ffeabc0");
  const auto shared = std::make_shared<int>(1);
  EXPECT_EQ(formatMessage("%p", shared), formatMessage("%p", shared.get()));
  const std::array<char, 1> unterminated{'x'};
  EXPECT_EQ(formatMessage("%p", unterminated.data()),
            formatMessage("%p", static_cast<const void*>(unterminated.data())));
}

TEST(FormatMessage, ShowsANullAddressAsZero) {
  const char* noText = nullptr;
  EXPECT_EQ(formatMessage("%p", nullptr), "0x0");
  EXPECT_EQ(formatMessage("%p", noText), "0x0");
  EXPECT_EQ(formatMessage("%p", std::unique_ptr<int>()), "0x0");
}

TEST(FormatMessage, ShowsTextsOfEachStringType) {
  const std::string text = "Shop printer";
  EXPECT_EQ(formatMessage("%@", text), text);
  EXPECT_EQ(formatMessage("%@", std::string_view(text)), text);
  EXPECT_EQ(formatMessage("%@", text.c_str()), text);
  EXPECT_EQ(formatMessage("%@", "literal"), "literal");
  EXPECT_EQ(formatMessage("%@", std::optional(text)), text);
  EXPECT_EQ(formatMessage("%@", ""), "");
}

TEST(FormatMessage, DistinguishesANullTextFromAnEmptyOne) {
  const char* noText = nullptr;
  EXPECT_EQ(formatMessage("%@", noText), "(null)");
  EXPECT_EQ(formatMessage("%@", nullptr), "(null)");
  EXPECT_EQ(formatMessage("%@", std::optional<std::string>()), "(null)");
  EXPECT_EQ(formatMessage("%@", std::optional<std::vector<std::uint8_t>>()), "(null)");
  EXPECT_EQ(formatMessage("%@", std::string_view()), "");
  EXPECT_EQ(formatMessage("%@", std::optional<std::string>("")), "");
}

TEST(FormatMessage, ShowsTheItemsOfAList) {
  using List = std::vector<std::string>;
  EXPECT_EQ(formatMessage("%@", List{"jp.one", "jp.two", ""}), "(jp.one, jp.two, )");
  EXPECT_EQ(formatMessage("%@", List{}), "()");
}

TEST(FormatMessage, ShowsByteSequencesInHex) {
  const std::vector<std::uint8_t> bytes{0x1b, 0x06, 0xff};
  EXPECT_EQ(formatMessage("%@, -> %d", bytes, 3), "<1b 06 ff>, -> 3");
  EXPECT_EQ(formatMessage("%@", std::optional(bytes)), "<1b 06 ff>");
}

TEST(FormatMessage, DoesNotCutLongMessages) {
  for (std::size_t length = 180; length < 520; ++length) {
    const std::string text(length, 'x');
    EXPECT_EQ(formatMessage("%@, %d, %@, %@.", text, 7, text, text + text),
              text + ", 7, " + text + ", " + text + text + ".");
  }
}

TEST(FormatMessage, TreatsAPercentSignInAnArgumentAsText) {
  EXPECT_EQ(formatMessage("%@, %d", "%p %s %", 1), "%p %s %, 1");
}

TEST(FormatMessage, DoesNotChangeTextOutsidePlaceholders) {
  EXPECT_EQ(formatMessage("[a hasPrefix:b] == NO): %@, %@;", "x", "y"),
            "[a hasPrefix:b] == NO): x, y;");
}

/// Logs as a port does.
class Speaker {
 public:
  std::int64_t speak(const std::string& text) const {
    constexpr const char* selector = "-[Speaker speak:]";
    QUOR_LOG(ZKLogTypeWrite, 0, "%@", text);
    return __LINE__ - 1;
  }

  int countedArguments(std::int32_t level) {
    constexpr const char* selector = "-[Speaker countedArguments]";
    int evaluated = 0;
    QUOR_LOG(ZKLogTypeProcess, level, "%d, %@", ++evaluated,
             LogWriter::createByteArrayDescription({0x1b}));
    return evaluated;
  }

  void chooseUnbraced(bool first) {
    constexpr const char* selector = "-[Speaker chooseUnbraced:]";
    if (first)
      QUOR_LOG(ZKLogTypeProcess, 0, "first");
    else
      QUOR_LOG(ZKLogTypeProcess, 0, "second");
  }

  void nest() {
    constexpr const char* selector = "-[Speaker nest]";
    QUOR_LOG(ZKLogTypeProcess, 0, "outer, %ld", speak("inner"));
  }
};

class LogStatementTest : public testing::Test {
 protected:
  LogStatementTest() {
    LogWriter::setLogging(true);
    LogWriter::sharedInstance().addSink(sink_);
  }
  ~LogStatementTest() override {
    LogWriter::setLogging(false);
    LogWriter::setTargetLogLevels({0});
    LogWriter::sharedInstance().removeSink(sink_);
    EXPECT_TRUE(LogWriter::sharedInstance().flush(1min));
  }

  std::vector<std::string> messages() const {
    EXPECT_TRUE(LogWriter::sharedInstance().flush(1min));
    return sink_->messages();
  }

  std::shared_ptr<test::KeepingSink> sink_ = std::make_shared<test::KeepingSink>();
  Speaker speaker_;
};

TEST_F(LogStatementTest, FillsEveryFieldOfTheRecord) {
  const auto before = std::chrono::system_clock::now();
  const std::int64_t line = speaker_.speak("hello");
  ASSERT_THAT(messages(), ElementsAre("hello"));
  const LogRecord record = sink_->records().front();
  EXPECT_EQ(record.type, ZKLogTypeWrite);
  EXPECT_EQ(record.level, 0);
  EXPECT_EQ(record.object, formatMessage("%p", &speaker_));
  EXPECT_STREQ(record.file, __FILE__);
  EXPECT_EQ(record.line, line);
  EXPECT_STREQ(record.method, "-[Speaker speak:]");
  EXPECT_EQ(record.thread, currentThreadId());
  EXPECT_GE(record.time, before);
  EXPECT_LE(record.time, std::chrono::system_clock::now());
}

TEST_F(LogStatementTest, EvaluatesNoArgumentAndBuildsNoMessageIfLoggingIsOff) {
  LogWriter::setLogging(false);
  const std::uint64_t handedOver = LogWriter::sharedInstance().statistics().handedOver;
  const std::uint64_t descriptions = test::descriptionsMade();
  EXPECT_EQ(speaker_.countedArguments(0), 0);
  EXPECT_EQ(test::descriptionsMade(), descriptions);
  EXPECT_EQ(LogWriter::sharedInstance().statistics().handedOver, handedOver);
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(LogStatementTest, EvaluatesItsArgumentsOnceIfLoggingIsOn) {
  const std::uint64_t handedOver = LogWriter::sharedInstance().statistics().handedOver;
  const std::uint64_t descriptions = test::descriptionsMade();
  EXPECT_EQ(speaker_.countedArguments(0), 1);
  EXPECT_EQ(test::descriptionsMade(), descriptions + 1);
  EXPECT_EQ(LogWriter::sharedInstance().statistics().handedOver, handedOver + 1);
  EXPECT_THAT(messages(), ElementsAre("1, <1b>"));
}

TEST_F(LogStatementTest, EvaluatesNoArgumentIfItsLevelIsOff) {
  EXPECT_EQ(speaker_.countedArguments(1), 0);
  LogWriter::setTargetLogLevels({1});
  EXPECT_EQ(speaker_.countedArguments(0), 0);
  EXPECT_EQ(speaker_.countedArguments(1), 1);
}

TEST_F(LogStatementTest, ChecksEachTimeWhetherLoggingIsOn) {
  speaker_.speak("one");
  LogWriter::setLogging(false);
  speaker_.speak("two");
  LogWriter::setLogging(true);
  speaker_.speak("three");
  EXPECT_THAT(messages(), ElementsAre("one", "three"));
}

TEST_F(LogStatementTest, IsASingleStatementInAnIfWithoutBraces) {
  speaker_.chooseUnbraced(false);
  speaker_.chooseUnbraced(true);
  EXPECT_THAT(messages(), ElementsAre("second", "first"));
}

TEST_F(LogStatementTest, MayContainAnotherLogStatementInItsArguments) {
  speaker_.nest();
  const std::vector<std::string> seen = messages();
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0], "inner");
  EXPECT_TRUE(seen[1].starts_with("outer, ")) << seen[1];
}

}  // namespace
}  // namespace quordalvane
