#include <gtest/gtest.h>

#include <cstdint>

#include "parsers/StatusParsers.h"
#include "tests/unit/parsers/StatusRecords.h"

namespace quordalvane::test {
namespace {

constexpr StatusType answeredByAByte[] = {StatusType::CashDrawer, StatusType::CoverOpen,
                                          StatusType::PaperEmpty};

QuorPrinterStatus_2 recordAnswering(int byte) {
  return recordHolding({static_cast<std::uint8_t>(byte)});
}

std::uint32_t anyOf(int byte, int mask) {
  return (byte & mask) != 0 ? 1 : 0;
}

bool same(const QuorPrinterStatus_2& one, const QuorPrinterStatus_2& other) {
  return std::memcmp(&one, &other, sizeof one) == 0;
}

/// `record` after the query was answered with `byte`.
QuorPrinterStatus_2 afterAnswer(QuorPrinterStatus_2 record, StatusType query, int byte) {
  switch (query) {
    case StatusType::CashDrawer:
      record.compulsionSwitch = anyOf(byte, 0x04);
      record.offline = anyOf(byte, 0x08);
      break;
    case StatusType::CoverOpen:
      record.coverOpen = anyOf(byte, 0x04);
      break;
    case StatusType::PaperEmpty:
      record.receiptPaperNearEmptyInner = anyOf(byte, 0x0c);
      record.receiptPaperEmpty = anyOf(byte, 0x60);
      break;
    case StatusType::All:
      break;
  }
  return record;
}

TEST(EscPosStatus, AValidByteChangesOnlyTheFieldsOfItsQuery) {
  for (const StatusType query : answeredByAByte) {
    int valid = 0;
    for (int byte = 0; byte < 256; ++byte) {
      const QuorPrinterStatus_2 before = recordAnswering(byte);
      QuorPrinterStatus_2 status = before;
      if ((byte & 0x93) != 0x12) {
        continue;
      }
      ++valid;
      EXPECT_NE(BuildParsedStatusESCPOS(&status, query), 0) << byte;
      EXPECT_TRUE(same(status, afterAnswer(before, query, byte))) << byte;
    }
    EXPECT_EQ(valid, 16);
  }
}

TEST(EscPosStatus, AnInvalidByteIsRejectedAndChangesNothing) {
  for (const StatusType query : answeredByAByte) {
    int rejected = 0;
    for (int byte = 0; byte < 256; ++byte) {
      if ((byte & 0x93) == 0x12) {
        continue;
      }
      ++rejected;
      const QuorPrinterStatus_2 before = recordAnswering(byte);
      QuorPrinterStatus_2 status = before;
      EXPECT_EQ(BuildParsedStatusESCPOS(&status, query), 0) << byte;
      EXPECT_TRUE(same(status, before)) << byte;
    }
    EXPECT_EQ(rejected, 240);
  }
}

TEST(EscPosStatus, EveryByteIsRejectedForAnUnknownQuery) {
  for (const StatusType query : {StatusType::All, static_cast<StatusType>(4), StatusType{~0U}}) {
    for (int byte = 0; byte < 256; ++byte) {
      const QuorPrinterStatus_2 before = recordAnswering(byte);
      QuorPrinterStatus_2 status = before;
      EXPECT_EQ(BuildParsedStatusESCPOS(&status, query), 0) << byte;
      EXPECT_TRUE(same(status, before)) << byte;
    }
  }
}

TEST(EscPosStatus, OneOfTwoBitsSufficesForPaperOutAndForPaperNearEnd) {
  for (const int byte : {0x32, 0x52, 0x72}) {
    QuorPrinterStatus_2 status = recordAnswering(byte);
    ASSERT_NE(BuildParsedStatusESCPOS(&status, StatusType::PaperEmpty), 0);
    EXPECT_EQ(status.receiptPaperEmpty, 1U) << byte;
    EXPECT_EQ(status.receiptPaperNearEmptyInner, 0U) << byte;
  }
  for (const int byte : {0x16, 0x1a, 0x1e}) {
    QuorPrinterStatus_2 status = recordAnswering(byte);
    ASSERT_NE(BuildParsedStatusESCPOS(&status, StatusType::PaperEmpty), 0);
    EXPECT_EQ(status.receiptPaperEmpty, 0U) << byte;
    EXPECT_EQ(status.receiptPaperNearEmptyInner, 1U) << byte;
  }
}

TEST(EscPosStatus, TheRecordedLengthOfTheReplyIsIgnored) {
  QuorPrinterStatus_2 status = recordAnswering(0x1a);
  status.rawLength = 0;
  EXPECT_NE(BuildParsedStatusESCPOS(&status, StatusType::CashDrawer), 0);
  EXPECT_EQ(status.offline, 1U);
  EXPECT_EQ(status.compulsionSwitch, 0U);
}

TEST(StatusType, HasTheNumbersOfThePublicInterface) {
  EXPECT_EQ(static_cast<std::uint32_t>(StatusType::CashDrawer), 0U);
  EXPECT_EQ(static_cast<std::uint32_t>(StatusType::CoverOpen), 1U);
  EXPECT_EQ(static_cast<std::uint32_t>(StatusType::PaperEmpty), 2U);
  EXPECT_EQ(static_cast<std::uint32_t>(StatusType::All), 3U);
}

}  // namespace
}  // namespace quordalvane::test
