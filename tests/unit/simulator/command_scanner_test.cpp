#include "simulator/CommandScanner.h"

#include <gtest/gtest.h>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

constexpr std::size_t mebibyte = 1'048'576;

// A scanner that has received the first `length` bytes of a command of four gibibytes.
CommandScanner scannerAfter(std::size_t length) {
  CommandScanner scanner;
  for (const std::uint8_t byte : hex("1d384c ffffffff")) {
    scanner.feed(byte);
  }
  for (std::size_t i = 7; i < length; ++i) {
    scanner.feed('x');
  }
  return scanner;
}

TEST(CommandScanner, StoresAtMostTwoMebibytesOfACommand) {
  EXPECT_EQ(scannerAfter(2 * mebibyte).bytes().size(), 2 * mebibyte);
  EXPECT_EQ(scannerAfter(2 * mebibyte + 1).bytes().size(), 2 * mebibyte);
}

TEST(CommandScanner, KeepsAtMost128KiBOfMemoryForTheNextCommand) {
  for (const std::size_t length : {mebibyte / 8, mebibyte / 4, mebibyte}) {
    CommandScanner scanner = scannerAfter(length);
    ASSERT_EQ(scanner.bytes().capacity(), length);
    scanner.restart();
    EXPECT_EQ(scanner.bytes().capacity(), length > mebibyte / 8 ? 0 : length);
  }
}

}  // namespace
}  // namespace quordalvane::simulator
