#include "job/PrintCommands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quordalvane {
namespace {

/// A command, its parameters included, and no payload.
struct Command {
  const char* name;
  std::vector<std::uint8_t> bytes;
};

// In the tests more data follows each command; the end of the command must not change.
const Command commands[] = {
    {"real-time status", {0x10, 0x04, 1}},
    {"real-time request", {0x10, 0x05, 1}},
    {"pulse in real time", {0x10, 0x14, 1, 0, 1}},
    {"power off in real time", {0x10, 0x14, 2, 1, 8}},
    {"page in page mode", {0x1b, 0x0c}},
    {"usual line spacing", {0x1b, 0x32}},
    {"home position", {0x1b, 0x3c}},
    {"initialisation", {0x1b, 0x40}},
    {"page mode", {0x1b, 0x4c}},
    {"standard mode", {0x1b, 0x53}},
    {"full cut", {0x1b, 0x69}},
    {"partial cut", {0x1b, 0x6d}},
    {"paper sensor status", {0x1b, 0x76}},
    {"status request", {0x1b, 0x06, 1}},
    {"character spacing", {0x1b, 0x20, 1}},
    {"print mode", {0x1b, 0x21, 1}},
    {"own characters on", {0x1b, 0x25, 1}},
    {"underline", {0x1b, 0x2d, 1}},
    {"line spacing", {0x1b, 0x33, 1}},
    {"peripheral device", {0x1b, 0x3d, 1}},
    {"own character removed", {0x1b, 0x3f, 'A'}},
    {"emphasis", {0x1b, 0x45, 1}},
    {"double strike", {0x1b, 0x47, 1}},
    {"feed of dots", {0x1b, 0x4a, 1}},
    {"reverse feed of dots", {0x1b, 0x4b, 1}},
    {"font", {0x1b, 0x4d, 1}},
    {"country", {0x1b, 0x52, 1}},
    {"direction in page mode", {0x1b, 0x54, 1}},
    {"one direction", {0x1b, 0x55, 1}},
    {"quarter turn", {0x1b, 0x56, 1}},
    {"alignment", {0x1b, 0x61, 1}},
    {"feed of lines", {0x1b, 0x64, 1}},
    {"reverse feed of lines", {0x1b, 0x65, 1}},
    {"colour", {0x1b, 0x72, 1}},
    {"code page", {0x1b, 0x74, 1}},
    {"transmission of a status", {0x1b, 0x75, 1}},
    {"upside down", {0x1b, 0x7b, 1}},
    {"counter reset", {0x1b, 0x1e, 0x45, 0}},
    {"position on the line", {0x1b, 0x24, 1, 0}},
    {"relative position", {0x1b, 0x5c, 1, 0}},
    {"paper sensors and keys", {0x1b, 0x63, 0x35, 1}},
    {"drawer", {0x1b, 0x70, 0, 1, 1}},
    {"area of the page", {0x1b, 0x57, 0, 0, 0, 0, 1, 0, 1, 0}},
    {"double-byte characters on", {0x1c, 0x26}},
    {"double-byte characters off", {0x1c, 0x2e}},
    {"double-byte print mode", {0x1c, 0x21, 1}},
    {"double-byte underline", {0x1c, 0x2d, 1}},
    {"double-byte code", {0x1c, 0x43, 1}},
    {"double-byte size", {0x1c, 0x57, 1}},
    {"own double-byte character removed", {0x1c, 0x3f, 0x77, 0x21}},
    {"double-byte spacing", {0x1c, 0x53, 1, 1}},
    {"stored image", {0x1c, 0x70, 1, 0}},
    {"macro", {0x1d, 0x3a}},
    {"character size", {0x1d, 0x21, 1}},
    {"downloaded image", {0x1d, 0x2f, 1}},
    {"white on black", {0x1d, 0x42, 1}},
    {"position of the text of a barcode", {0x1d, 0x48, 1}},
    {"state of the buffer", {0x1d, 0x45, 1}},
    {"identity", {0x1d, 0x49, 1}},
    {"beginning of the line", {0x1d, 0x54, 1}},
    {"automatic status", {0x1d, 0x61, 1}},
    {"smoothing", {0x1d, 0x62, 1}},
    {"font of the text of a barcode", {0x1d, 0x66, 1}},
    {"height of a barcode", {0x1d, 0x68, 1}},
    {"status in its turn", {0x1d, 0x72, 1}},
    {"width of a barcode", {0x1d, 0x77, 1}},
    {"position on the page", {0x1d, 0x24, 1, 0}},
    {"left margin", {0x1d, 0x4c, 1, 0}},
    {"units", {0x1d, 0x50, 1, 1}},
    {"width of the print area", {0x1d, 0x57, 1, 0}},
    {"relative position on the page", {0x1d, 0x5c, 1, 0}},
    {"macro run", {0x1d, 0x5e, 1, 1, 1}},
    {"counter of maintenance", {0x1d, 0x67, 0x30, 0, 20, 0}},
    {"answers in their turn", {0x1d, 0x7a, 0x30, 1, 1}},
    {"mark", {0x1b, 0x1d, 0x03, 0x01, 0, 0}},
    {"firmware", {0x1b, 0x23, 0x2a, 0x0a, 0}},
    {"DIP switches", {0x1b, 0x23, 0x2c, 0x31, 0x0a, 0}},
    {"other question", {0x1b, 0x23, 0x2b}},
    {"preparation of a status", {0x1b, 0x2a, 0x72, 0x42}},
    {"tab stops", {0x1b, 0x44, 8, 16, 0}},
    {"tab stop at the first column", {0x1b, 0x44, 1, 0}},
    {"no tab stops", {0x1b, 0x44, 0}},
    {"cut", {0x1d, 0x56, 0}},
    {"cut after a feed", {0x1d, 0x56, 0x41, 1}},
};

std::string nameOf(const testing::TestParamInfo<Command>& info) {
  std::string name;
  for (const char* letter = info.param.name; *letter != '\0'; ++letter) {
    name += *letter == ' ' || *letter == '-' ? '_' : *letter;
  }
  return name;
}

class CommandsWithoutAPayloadLength : public testing::TestWithParam<Command> {};

TEST_P(CommandsWithoutAPayloadLength, EndAfterTheirParameters) {
  for (const std::size_t bytesAfter : {0U, 16U}) {
    auto data = GetParam().bytes;
    const std::size_t length = data.size();
    data.insert(data.end(), bytesAfter, 'x');
    const auto command = printCommandAt(data);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->length, length) << bytesAfter;
    EXPECT_FALSE(command->isCounted);
  }
}

TEST_P(CommandsWithoutAPayloadLength, AreLongerThanTheDataIfTheirLastByteIsMissing) {
  auto data = GetParam().bytes;
  data.pop_back();
  const auto command = printCommandAt(data);
  ASSERT_TRUE(command);
  EXPECT_GT(command->length, data.size());
}

INSTANTIATE_TEST_SUITE_P(Each, CommandsWithoutAPayloadLength, testing::ValuesIn(commands), nameOf);

/// A command up to its payload, and the length of the payload.
struct CountedCommand {
  std::vector<std::uint8_t> head;
  std::size_t payload;
};

const CountedCommand countedCommands[] = {
    {{0x1b, 0x28, 'A', 0, 0}, 0},
    {{0x1b, 0x28, 'Z', 2, 1}, 258},
    {{0x1c, 0x28, 'a', 0, 0}, 0},
    {{0x1c, 0x28, 'z', 3, 0}, 3},
    {{0x1d, 0x28, 'L', 0, 0}, 0},
    {{0x1d, 0x28, 'k', 3, 0}, 3},
    {{0x1b, 0x2a, 0, 0, 0}, 0},
    {{0x1b, 0x2a, 1, 2, 1}, 258},
    {{0x1b, 0x2a, 32, 1, 0}, 3},
    {{0x1b, 0x2a, 33, 2, 0}, 6},
    {{0x1d, 0x38, 0x4c, 0, 0, 0, 0}, 0},
    {{0x1d, 0x38, 0x4c, 3, 2, 1, 0}, 66051},
    {{0x1d, 0x76, 0x30, 0, 0, 0, 0, 0}, 0},
    {{0x1d, 0x76, 0x30, 0x33, 2, 0, 3, 0}, 6},
    {{0x1d, 0x76, 0x30, 1, 1, 1, 2, 1}, 257U * 258U},
    {{0x1d, 0x2a, 0, 1}, 0},
    {{0x1d, 0x2a, 2, 3}, 48},
    {{0x1b, 0x26, 3, 'A', 'A', 0}, 0},
    {{0x1b, 0x26, 3, 0x20, 0x20, 2}, 6},
    {{0x1b, 0x26, 1, 0x7e, 0x7e, 2}, 2},
    {{0x1c, 0x71, 0}, 0},
    {{0x1c, 0x71, 1, 0, 0, 0, 0}, 0},
    {{0x1c, 0x71, 1, 2, 0, 3, 0}, 48},
    {{0x1d, 0x6b, 65, 0}, 0},
    {{0x1d, 0x6b, 79, 255}, 255},
};

TEST(CommandsWithAPayloadLength, EndAfterTheirCountedPayload) {
  for (const CountedCommand& row : countedCommands) {
    for (const std::size_t bytesAfter : {0U, 16U}) {
      auto data = row.head;
      data.insert(data.end(), row.payload + bytesAfter, 0);
      const auto command = printCommandAt(data);
      ASSERT_TRUE(command) << testing::PrintToString(row.head);
      EXPECT_EQ(command->length, row.head.size() + row.payload) << testing::PrintToString(row.head);
      EXPECT_TRUE(command->isCounted) << testing::PrintToString(row.head);
    }
  }
}

TEST(CommandsWithAPayloadLength, HaveTheLengthThatTheirHeaderGives) {
  for (const CountedCommand& row : countedCommands) {
    const auto command = printCommandAt(row.head);
    ASSERT_TRUE(command) << testing::PrintToString(row.head);
    EXPECT_EQ(command->length, row.head.size() + row.payload) << testing::PrintToString(row.head);
  }
}

TEST(CommandsWithAPayloadLength, AreLongerThanTheDataIfTheirLastByteIsMissing) {
  for (const CountedCommand& row : countedCommands) {
    auto data = row.head;
    data.insert(data.end(), row.payload, 0);
    data.pop_back();
    const auto command = printCommandAt(data);
    ASSERT_TRUE(command) << testing::PrintToString(row.head);
    EXPECT_GT(command->length, data.size()) << testing::PrintToString(row.head);
  }
}

TEST(UnknownCommands, AreNotParsed) {
  const std::vector<std::uint8_t> unknown[] = {
      {0x10, 0x14, 9},
      {0x1b, 0x28, '@', 0, 0},
      {0x1d, 0x28, '[', 0, 0},
      {0x1c, 0x28, 0x60, 0, 0},
      {0x1d, 0x28, '{', 0, 0},
      {0x1b, 0x26, 0, 'A', 'A', 1},
      {0x1b, 0x26, 1, 0x1f, 0x1f, 1},
      {0x1b, 0x26, 1, 'A', 0x7f, 1},
      {0x1b, 0x26, 1, 'B', 'A', 1},
      {0x1b, 0x2a, 2, 0, 0},
      {0x1b, 0x44, 8, 8, 0},
      {0x1d, 0x6b, 7, 'A', 0},
      {0x1d, 0x6b, 64, 0},
      {0x1d, 0x6b, 80, 0},
      {0x1b, 0xff},
      {0x1d, 0x76, 0x30, 4, 0, 0, 0, 0},
  };
  for (const auto& data : unknown) {
    EXPECT_FALSE(printCommandAt(data)) << testing::PrintToString(data);
  }
}

TEST(TerminatedBarcodes, EndAtAZeroByteAfterAtMost255PrintableCharacters) {
  for (const std::uint8_t kind : {std::uint8_t{0}, std::uint8_t{6}}) {
    for (const std::size_t count : {0U, 255U, 256U}) {
      std::vector<std::uint8_t> data = {0x1d, 0x6b, kind};
      data.insert(data.end(), count / 2, 0x20);
      data.insert(data.end(), count - count / 2, 0x7e);
      data.push_back(0);
      const auto command = printCommandAt(data);
      ASSERT_EQ(command.has_value(), count <= 255) << count;
      EXPECT_TRUE(!command || command->length == data.size()) << count;
    }
    for (const std::uint8_t odd : {std::uint8_t{0x1f}, std::uint8_t{0x7f}}) {
      EXPECT_FALSE(printCommandAt(std::vector<std::uint8_t>{0x1d, 0x6b, kind, odd, 0}));
    }
  }
}

TEST(ByteOutsideCommands, IsParsedAsACommandOfOneByte) {
  for (const std::uint8_t byte : std::vector<std::uint8_t>{0, 0x0f, 0x11, 0x1a, 0x1e, 0x20, 0xff}) {
    EXPECT_EQ(printCommandAt(std::vector<std::uint8_t>{byte, 'x'})->length, 1U);
  }
  for (const std::uint8_t first : std::vector<std::uint8_t>{0x10, 0x1b, 0x1c, 0x1d}) {
    EXPECT_EQ(printCommandAt(std::vector<std::uint8_t>{first})->length, 2U);
  }
}

}  // namespace
}  // namespace quordalvane
