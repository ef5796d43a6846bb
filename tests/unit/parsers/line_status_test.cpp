#include <gmock/gmock.h>

#include <cstdint>
#include <memory>
#include <random>

#include "parsers/StatusParsers.h"
#include "tests/unit/parsers/StatusRecords.h"

namespace quordalvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t allBits = 0xff;

/// A nine-byte reply with the given flag bytes and state bytes, as today's printers send it.
Bytes reply(std::array<std::uint8_t, 4> flags, std::array<std::uint8_t, 3> state = {}) {
  return {0x89, 0x01, flags[0], flags[1], flags[2], flags[3], state[0], state[1], state[2]};
}

QuorPrinterStatus_2 parsed(const Bytes& bytes) {
  QuorPrinterStatus_2 status = recordHolding(bytes);
  BuildParsedStatus(&status);
  return status;
}

TEST(StatusLength, IsTheLowSixBitsOfTheFirstByteOr1IfTheBitsAre0) {
  for (std::int32_t top = 0; top < 256; top += 64) {
    EXPECT_EQ(CalculateStatusLength(top), 1) << top;
    for (std::int32_t length = 1; length <= 63; ++length) {
      EXPECT_EQ(CalculateStatusLength(top + length), length) << top;
    }
  }
}

TEST(LineStatus, EachBitSetsOneFlagTo1AndNoOtherFlag) {
  for (std::size_t k = 0; k < flagCount; ++k) {
    std::array<std::uint8_t, 4> flags = {};
    flags[k / 8] = static_cast<std::uint8_t>(1U << (k % 8));
    const QuorPrinterStatus_2 status = parsed(reply(flags));
    EXPECT_THAT(flagsSet(status), ElementsAre(k));
    EXPECT_EQ(flag(status, k), 1U) << k;
  }
}

TEST(LineStatus, EachMissingBitClearsOneFlagAndNoOtherFlag) {
  for (std::size_t k = 0; k < flagCount; ++k) {
    std::array<std::uint8_t, 4> flags = {allBits, allBits, allBits, allBits};
    flags[k / 8] = static_cast<std::uint8_t>(allBits ^ (1U << (k % 8)));
    const QuorPrinterStatus_2 status = parsed(reply(flags));
    for (std::size_t other = 0; other < flagCount; ++other) {
      EXPECT_EQ(flag(status, other), other == k ? 0U : 1U) << other;
    }
  }
}

TEST(LineStatus, TheFirstAndLastBitOfEachByteSetTheRightFlag) {
  // The first and last flags of each byte; the others follow the record's order.
  EXPECT_EQ(parsed(reply({0x01, 0, 0, 0})).coverOpen, 1U);
  EXPECT_EQ(parsed(reply({0x02, 0, 0, 0})).offline, 1U);
  EXPECT_EQ(parsed(reply({0x80, 0, 0, 0})).headThermistorError, 1U);
  EXPECT_EQ(parsed(reply({0, 0x01, 0, 0})).receiveBufferOverflow, 1U);
  EXPECT_EQ(parsed(reply({0, 0x80, 0, 0})).voltageError, 1U);
  EXPECT_EQ(parsed(reply({0, 0, 0x01, 0})).receiptBlackMarkDetection, 1U);
  EXPECT_EQ(parsed(reply({0, 0, 0x02, 0})).receiptPaperEmpty, 1U);
  EXPECT_EQ(parsed(reply({0, 0, 0x10, 0})).paperPresent, 1U);
  EXPECT_EQ(parsed(reply({0, 0, 0x80, 0})).stackerFull, 1U);
  EXPECT_EQ(parsed(reply({0, 0, 0, 0x01})).slipTOF, 1U);
  EXPECT_EQ(parsed(reply({0, 0, 0, 0x20})).etbAvailable, 1U);
}

TEST(LineStatus, IgnoresTheTwoBitsAfterTheLastFlag) {
  EXPECT_THAT(flagsSet(parsed(reply({0, 0, 0, 0xc0}))), IsEmpty());
}

TEST(LineStatus, CopiesTheThreeStateBytesUnchanged) {
  for (unsigned value = 0; value < 256; ++value) {
    const auto byte = static_cast<std::uint8_t>(value);
    const auto inverse = static_cast<std::uint8_t>(~value);
    const auto turned = static_cast<std::uint8_t>(value + 100);
    const QuorPrinterStatus_2 status = parsed(reply({}, {byte, inverse, turned}));
    EXPECT_EQ(status.etbCounter, byte);
    EXPECT_EQ(status.presenterState, inverse);
    EXPECT_EQ(status.connectedInterface, turned);
    EXPECT_THAT(flagsSet(status), IsEmpty());
  }
}

TEST(LineStatus, ReadsMissingBytesAsZeroAndIgnoresExtraBytes) {
  for (std::uint32_t length = 0; length <= 63; ++length) {
    QuorPrinterStatus_2 status = recordHolding(Bytes(63, allBits));
    status.rawLength = length;
    BuildParsedStatus(&status);
    for (std::size_t k = 0; k < flagCount; ++k) {
      EXPECT_EQ(flag(status, k), 2 + k / 8 < length ? 1U : 0U) << k << " of " << length;
    }
    EXPECT_EQ(status.etbCounter, 6 < length ? allBits : 0) << length;
    EXPECT_EQ(status.presenterState, 7 < length ? allBits : 0) << length;
    EXPECT_EQ(status.connectedInterface, 8 < length ? allBits : 0) << length;
  }
}

TEST(LineStatus, DoesNotChangeTheRawReplyAndItsLength) {
  std::mt19937 random(20);
  for (std::uint32_t length = 0; length <= 63; ++length) {
    QuorPrinterStatus_2 status = recordHolding({});
    for (std::uint8_t& byte : status.raw) {
      byte = static_cast<std::uint8_t>(random());
    }
    status.rawLength = length;
    const QuorPrinterStatus_2 before = status;
    BuildParsedStatus(&status);
    EXPECT_EQ(status.rawLength, length);
    EXPECT_EQ(std::memcmp(status.raw, before.raw, sizeof status.raw), 0) << length;
  }
}

// The records lie on the heap in their exact size, so that the address sanitizer notices a read
// beyond the end.
TEST(LineStatus, ReadsNoByteBeyondTheRecord) {
  std::mt19937 random(3);
  for (int round = 0; round < 20000; ++round) {
    const auto status = std::make_unique<QuorPrinterStatus_2>();
    for (std::size_t k = 0; k < sizeof *status; ++k) {
      reinterpret_cast<std::uint8_t*>(status.get())[k] = static_cast<std::uint8_t>(random());
    }
    BuildParsedStatus(status.get());
    for (std::size_t k = 0; k < flagCount; ++k) {
      ASSERT_LE(flag(*status, k), 1U) << "round " << round;
    }
  }
}

TEST(LineStatus, LimitsTheLengthToTheCapacityOfTheRawBytes) {
  for (const std::uint32_t hostile : {64U, 255U, 0x7fffffffU, 0xffffffffU}) {
    QuorPrinterStatus_2 status = recordHolding(reply({0x05, 0, 0, 0}, {7, 1, 2}));
    status.rawLength = hostile;
    BuildParsedStatus(&status);
    EXPECT_THAT(flagsSet(status), ElementsAre(0U, 2U));
    EXPECT_EQ(status.etbCounter, 7);
    EXPECT_EQ(status.rawLength, hostile);
  }
}

}  // namespace
}  // namespace quordalvane::test
