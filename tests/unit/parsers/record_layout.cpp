// The record's layout as a C++ program sees it; see record_layout.c.
#include <quordalvane/QuorIOPort.h>

#include <cstddef>
#include <type_traits>

#define ASSERT_OFFSET(field, offset) \
  static_assert(offsetof(QuorPrinterStatus_2, field) == (offset), #field " has moved")

static_assert(sizeof(QuorPrinterStatus_2) == 192);
static_assert(alignof(QuorPrinterStatus_2) == 4);
static_assert(std::is_trivial_v<QuorPrinterStatus_2>);
static_assert(std::is_standard_layout_v<QuorPrinterStatus_2>);

ASSERT_OFFSET(coverOpen, 0);
ASSERT_OFFSET(offline, 4);
ASSERT_OFFSET(receiptPaperEmpty, 68);
ASSERT_OFFSET(paperPresent, 80);
ASSERT_OFFSET(etbAvailable, 116);
ASSERT_OFFSET(etbCounter, 120);
ASSERT_OFFSET(presenterState, 121);
ASSERT_OFFSET(connectedInterface, 122);
ASSERT_OFFSET(rawLength, 124);
ASSERT_OFFSET(raw, 128);
