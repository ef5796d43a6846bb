#include "job/PrintData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "tests/support/Bytes.h"

namespace quordalvane {
namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::HasSubstr;

struct Case {
  const char* what;
  Bytes data;
  bool confirmableInLineMode;
  bool confirmableInEscPos;
};

const Case cases[] = {
    {"nothing", {}, true, true},
    {"text", {'a', 'b', '\n'}, true, true},
    {"a mark", {'a', 0x17}, false, false},
    {"an ESC/POS mark", {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00}, false, false},
    {"a data cancel", {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00}, false, false},
    {"a counter reset", {0x1b, 0x1e, 0x45, 0x00}, false, false},
    {"a status request", {0x1b, 0x06, 0x01}, false, true},
    {"a real-time request", {0x10, 0x04, 0x01}, false, true},
    {"a firmware request", {0x1b, 0x23, 0x2a, 0x0a, 0x00}, false, true},
    {"a request for the printer's name", {0x1d, 0x49, 0x41}, false, true},
    {"a DIP request", {0x1b, 0x23, 0x2c, 0x31, 0x0a, 0x00}, false, true},
    {"a raster with marks", {0x1d, 0x76, 0x30, 0, 1, 0, 2, 0, 0x17, 0x17}, true, true},
    {"a mark after a raster", {0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17, 0x17}, false, false},
    {"a raster cut short", {0x1d, 0x76, 0x30, 0, 1, 0, 2, 0, 0xff}, false, false},
    {"a raster header cut short", {0x1d, 0x76, 0x30, 0, 1}, false, false},
    {"a bit image of one byte a column", {0x1b, 0x2a, 0, 2, 0, 0x17, 0x17}, true, true},
    {"a fine bit image of one byte a column", {0x1b, 0x2a, 1, 2, 0, 0x17, 0x17}, true, true},
    {"a bit image of three bytes a column", {0x1b, 0x2a, 33, 1, 0, 0x17, 0x17, 0x17}, true, true},
    {"a bit image with a mark after it", {0x1b, 0x2a, 33, 1, 0, 1, 2, 3, 0x17}, false, false},
    {"the request's preparation", {0x1b, 0x2a, 0x72, 0x42}, true, true},
    {"graphics", {0x1d, 0x28, 0x4c, 2, 0, 0x30, 0x17}, true, true},
    {"long graphics", {0x1d, 0x38, 0x4c, 1, 0, 0, 0, 0x17}, true, true},
    {"long graphics of 4 GiB", {0x1d, 0x38, 0x4c, 0xff, 0xff, 0xff, 0xff, 0x17}, false, false},
    {"a mark for the function of 1d 28", {0x1d, 0x28, 0x17, 2, 0, 'a', 'b'}, false, false},
    {"a mark for the function of 1b 28", {0x1b, 0x28, 0x17, 2, 0, 'a', 'b'}, false, false},
    {"a mark for the function of 1c 28", {0x1c, 0x28, 0x17, 2, 0, 'a', 'b'}, false, false},
    {"a counted barcode", {0x1d, 0x6b, 73, 2, '{', 0x17}, true, true},
    {"a terminated barcode", {0x1d, 0x6b, 4, 'A', 'B', 0, 'x'}, true, true},
    {"a terminated barcode of characters that no barcode has",
     {0x1d, 0x6b, 4, 0x80, 0, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     false,
     false},
    {"a mark in a terminated barcode", {0x1d, 0x6b, 4, 'A', 0x17, 0}, false, false},
    {"a terminated barcode without its end", {0x1d, 0x6b, 4, 'A'}, false, false},
    {"a barcode of no known kind", {0x1d, 0x6b, 20, 0x17}, false, false},
    {"a barcode's head alone", {0x1d, 0x6b}, false, false},
    {"a barcode without its count", {0x1d, 0x6b, 73}, false, false},
    {"a coarse bit image of three bytes a column",
     {0x1b, 0x2a, 32, 1, 0, 0x17, 0x17, 0x17},
     true,
     true},
    {"a parameter that reads as a mark", {0x1b, 0x64, 0x17}, false, false},
    {"a parameter that reads as an image's head, and marks",
     {0x1b, 0x21, 0x1d, '(', 'L', 2, 0, 0x17, 0x17},
     false,
     false},
    {"a parameter that reads as an image's head, and text",
     {0x1b, 0x33, 0x1d, '(', 'T', 'o', 't', 'a', 'l', ' ', '5', ')'},
     true,
     true},
    {"a barcode of a kind between the known ones", {0x1d, 0x6b, 80, 2, 0x17, 0x17}, false, false},
    {"a raster of no known mode", {0x1d, 0x76, 0x30, 9, 1, 0, 1, 0, 0x17}, false, false},
    {"a bit image of no known mode", {0x1b, 0x2a, 9, 1, 0, 0x17}, false, false},
    {"a downloaded image", {0x1d, 0x2a, 1, 1, 0, 0, 0x17, 0, 0, 0, 0, 0}, true, true},
    {"a mark after a downloaded image",
     {0x1d, 0x2a, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0x17},
     false,
     false},
    {"characters of its own", {0x1b, 0x26, 3, 'A', 'B', 1, 0x17, 0, 0, 1, 0, 0, 0x17}, true, true},
    {"characters of its own, cut short", {0x1b, 0x26, 3, 'A', 'B', 1, 0, 0, 0, 1}, false, false},
    {"characters of its own, the wrong way round", {0x1b, 0x26, 3, 'B', 'A', 0x17}, false, false},
    {"characters of its own, cut short before a width",
     {0x1b, 0x26, 3, 'A', 'B', 1, 0, 0, 0},
     false,
     false},
    {"characters of its own without a height", {0x1b, 0x26, 0, 'A', 'A', 1, 0x17}, false, false},
    {"control characters of its own", {0x1b, 0x26, 1, 0x1f, 0x1f, 1, 0x17}, false, false},
    {"characters of its own beyond the last", {0x1b, 0x26, 1, 'A', 0x7f, 1, 0x17}, false, false},
    {"stored images", {0x1c, 0x71, 1, 1, 0, 1, 0, 0x17, 0x17, 0, 0, 0, 0, 0, 0}, true, true},
    {"stored images cut short", {0x1c, 0x71, 2, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, false, false},
    {"tab stops", {0x1b, 0x44, 8, 16, 0x1d, 0, 'v', 'x'}, true, true},
    {"tab stops that fall",
     {0x1b, 0x44, 16, 8, 0, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     false,
     false},
    {"an image after no tab stops",
     {0x1b, 0x44, 0, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     true,
     true},
    {"an image after an alignment of line mode",
     {0x1b, 0x1d, 0x61, 1, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     true,
     true},
    {"an image after a drawer's pulse",
     {0x10, 0x14, 1, 0, 1, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     true,
     true},
    {"an image after a switching off",
     {0x10, 0x14, 2, 1, 8, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     true,
     true},
    {"an image after an unknown action",
     {0x10, 0x14, 9, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     false,
     false},
    {"an image after an unknown command",
     {0x1b, 0xff, 0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17},
     false,
     false},
    {"text after an unknown command", {0x1b, 0xff, 'a', 0x1b, 0x40, '\n'}, true, true},
    {"cuts", {0x1d, 0x56, 0, 0x1d, 0x56, 66, 0x1d, 0x1b, 0x69}, true, true},
    {"a command's first byte at the end", {'a', 0x1b}, false, false},
};

TEST(ReasonWhyACheckedBlockCannotConfirm, IsNotFoundInsideACountedPayload) {
  for (const Case& row : cases) {
    EXPECT_EQ(!confirmationObstacle(row.data, ZKEmulationQuorLine), row.confirmableInLineMode)
        << row.what;
    EXPECT_EQ(!confirmationObstacle(row.data, ZKEmulationESCPOS), row.confirmableInEscPos)
        << row.what;
  }
}

TEST(ReasonWhyACheckedBlockCannotConfirm, IsFoundInAnImageAfterMoreThan32TabStops) {
  const Bytes image = {0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0x17};
  for (const int count : {32, 33}) {
    Bytes data = {0x1b, 0x44};
    for (int i = 0; i < count; ++i) {
      data.push_back(static_cast<std::uint8_t>(0x30 + i));
    }
    data.push_back(0);
    data.insert(data.end(), image.begin(), image.end());
    EXPECT_EQ(!confirmationObstacle(data, ZKEmulationESCPOS), count == 32) << count;
  }
}

TEST(ReasonWhyACheckedBlockCannotConfirm, NamesTheCommandAndItsOffset) {
  Bytes data(1500, 'x');
  data[1204] = 0x17;
  EXPECT_THAT(confirmationObstacle(data, ZKEmulationESCPOS).value_or(""),
              HasSubstr("an end-of-block mark (17) at byte 1,204"));
}

TEST(ReasonWhyACheckedBlockCannotConfirm, NamesAnUnknownCommandThatPrecedesAnEndMark) {
  EXPECT_THAT(
      confirmationObstacle(Bytes{'a', 0x1b, 0xff, 'b', 0x17}, ZKEmulationESCPOS).value_or(""),
      HasSubstr("the command at byte 1 is unknown"));
}

TEST(NeverAnsweredData, IncludesTextAndImagesAndUsualCommands) {
  const Bytes quiet[] = {
      {},
      {'a', '\n'},
      {0x1b, 0x40, 'a', 0x0a, 0x1d, 0x56, 0x00},
      {0x1d, 0x76, 0x30, 0, 1, 0, 3, 0, 0x10, 0x04,
       0x01},  // an image whose dots are the bytes of a request
      {0x1d, 0x28, 0x6b, 4, 0, 0x31, 0x50, 0x30, 0x05},  // the text of a two-dimensional code
      {0x1b, 0x1d, 0x61, 0x01, 'a'},
  };
  for (const Bytes& data : quiet) {
    EXPECT_TRUE(isNeverAnswered(data)) << testing::PrintToString(data);
  }
}

TEST(NeverAnsweredData, ExcludesRequestsAndUnknownCommandsAndVeryLongData) {
  const Bytes answered[] = {
      {'a', 0x10, 0x04, 0x01},
      {0x1d, 0x72, 0x01},
      {0x1d, 0x49, 0x41},
      {0x1d, 0x61, 0xff},
      {0x1b, 0x06, 0x01},
      {0x1b, 0x23, 0x2a, 0x0a, 0x00},
      {0x1b, 0x75, 0x00},
      {0x1b, 0x76},
      {0x1c, 0x28, 0x45, 2, 0, 0x30, 0x30},
      {0x1d, 0x67, 0x32, 0, 20, 0},
      {0x1d, 0x28, 0x6b, 1, 0, 0x31},  // too short to contain its function
      {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00},
      {0x1d, 0x28, 0x48, 6, 0, 0x30, 0x30, 1, 2, 3, 4},
      {0x1d, 0x28, 0x6b, 3, 0, 0x31, 0x52, 0x30},  // asks for a two-dimensional code's size
      {0x05},
      {0x1b, 0xff, 'a'},                       // an unknown command
      {0x1d, 0x76, 0x30, 0, 1, 0, 9, 0, 'a'},  // an image whose rest may follow in other data
  };
  for (const Bytes& data : answered) {
    EXPECT_FALSE(isNeverAnswered(data)) << testing::PrintToString(data);
  }
  EXPECT_TRUE(isNeverAnswered(Bytes(std::size_t{1} << 20U, 'a')));
  EXPECT_FALSE(isNeverAnswered(Bytes((std::size_t{1} << 20U) + 1, 'a')));
}

TEST(CommandEnd, IsTheEndOfTheCommandThatContainsTheOffset) {
  const Bytes data = {'a',  0x1d, 0x76, 0x30, 0,    1,  0, 2,  0,
                      0x55, 0x55, 'b',  0x1d, 0x6b, 73, 9, 'x'};
  for (std::size_t place : {0U, 1U, 11U, 12U}) {
    EXPECT_EQ(commandEnd(data, place), place);
  }
  for (std::size_t place = 2; place <= 11; ++place) {
    EXPECT_EQ(commandEnd(data, place), 11U) << place;
  }
  for (std::size_t place = 13; place <= data.size(); ++place) {
    EXPECT_EQ(commandEnd(data, place), data.size()) << place;
  }
  EXPECT_EQ(commandEnd(Bytes{0x1b, 0x33, 0x1d, '(', 'T', 'o', 't', 'a', 'l'}, 4), 4U);
  EXPECT_EQ(commandEnd(Bytes{0x1b, 0xff, 0x1d, 0x76}, 3), 3U) << "nobody knows";
}

TEST(ReasonWhyAQueryProvesNothing, MayBeACommandThatMakesThePrinterDropData) {
  EXPECT_EQ(endSignObstacle(Bytes{'a', '\n'}), std::nullopt);
  for (const Bytes& data : {Bytes{'a', 0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00},
                            Bytes{0x1b, 0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00},
                            Bytes{0x1b, 0x21, 0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00},
                            Bytes{0x1f, 0x00, 0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00}}) {
    EXPECT_THAT(endSignObstacle(data).value_or(""), HasSubstr("drop unprinted data"));
  }
}

TEST(ReasonWhyAQueryProvesNothing, MayBeAnIncompleteCommandAtTheEndOfTheData) {
  EXPECT_THAT(endSignObstacle(Bytes{'a', 0x1d, 0x76, 0x30, 0, 1, 0, 2, 0, 0xff}).value_or(""),
              HasSubstr("the data ends inside the command that begins at byte 1"));
}

TEST(ReasonWhyAQueryProvesNothing, IsNotFoundInsideAnImageExceptTheRealTimeClearCommand) {
  for (const Bytes& before : {Bytes{}, Bytes{'a'}}) {
    Bytes data = before;
    data.insert(data.end(), {0x1d, 0x76, 0x30, 0, 1, 0, 3, 0, 0x1b, 0x1d, 0x03});
    EXPECT_EQ(endSignObstacle(data), std::nullopt) << before.size();
  }
  EXPECT_THAT(
      endSignObstacle(Bytes{0x1d, 0x76, 0x30, 0, 1, 0, 3, 0, 0x10, 0x14, 0x08}).value_or(""),
      HasSubstr("drop unprinted data"));
  EXPECT_THAT(endSignObstacle(
                  Bytes{0x1d, 0x76, 0x30, 0, 1, 0, 1, 0, 0xff, 0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00})
                  .value_or(""),
              HasSubstr("drop unprinted data"));
}

TEST(InOrderRequests, AreCountedOnlyOutsidePayloadsAndParameters) {
  const std::pair<Bytes, std::uint64_t> rows[] = {
      {{}, 0},
      {{'a', '\n'}, 0},
      {{0x1d, 0x72, 0x01, 'a', 0x1d, 0x72, 0x02}, 2},
      {{0x1d, 0x76, 0x30, 0, 1, 0, 3, 0, 0x1d, 0x72, 0x01}, 0},
      {{0x1d, 0x76, 0x30, 0, 1, 0, 9, 0, 0x1d, 0x72, 0x01}, 0},
      {{0x1d, 0x72, 0x01, 0x1b, 0xff, 'a'}, 1},
  };
  for (const auto& [data, count] : rows) {
    EXPECT_EQ(inOrderRequestsIn(data), count) << testing::PrintToString(data);
  }
}

TEST(InOrderRequests, CannotBeCountedInDataThatContainsAGraphicsQuery) {
  const std::set<int> questions = {0x00, 0x03, 0x04, 0x30, 0x33, 0x34, 0x40, 0x50};
  for (int function = 0; function <= 0xff; ++function) {
    const auto byte = static_cast<std::uint8_t>(function);
    const auto count = inOrderRequestsIn(Bytes{0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, byte});
    EXPECT_EQ(count.has_value(), !questions.contains(function)) << function;
  }
  EXPECT_TRUE(inOrderRequestsIn(Bytes{0x1d, 0x28, 0x4c, 0x01, 0x00, 0x30})) << "no function";
}

TEST(InOrderRequests, CannotBeCountedAfterAnUnknownCommandOrARequestWithASimilarAnswer) {
  for (const char* const data :
       {"1b ff 61 1d 72 01", "1b ff 61 1b 76", "1c 1d 72 01", "1d 49 41", "1b 76", "1b 75 00",
        "1b 06 01", "1b 23 2a 0a 00", "1d 28 45 02 00 04 01", "1d 28 4c 02 00 30 00",
        "1d 28 4c 04 00 30 50 4b 43", "1d 28 6b 03 00 31 52 30"}) {
    EXPECT_EQ(inOrderRequestsIn(test::bytes(data)), std::nullopt) << data;
  }
  for (const char* const silent : {"1d 28 4c 02 00 30 32", "1d 28 6b 03 00 31 51 30", "1d 61 00"}) {
    EXPECT_EQ(inOrderRequestsIn(test::bytes(silent)), 0U) << silent;
  }
  EXPECT_EQ(inOrderRequestsIn(Bytes{0x1d, 0xff, 'a'}), 0U) << "nothing after it begins a request";
}

}  // namespace
}  // namespace quordalvane
