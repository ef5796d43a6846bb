/*
 * The record's layout as a C program sees it. The same assertions are in record_layout.cpp for
 * C++: both must hold for a C application to hand its record to the library.
 */
#include <quordalvane/QuorIOPort.h>
#include <stdalign.h>
#include <stddef.h>

#define ASSERT_OFFSET(field, offset) \
  _Static_assert(offsetof(QuorPrinterStatus_2, field) == (offset), #field " has moved")

_Static_assert(sizeof(QuorPrinterStatus_2) == 192, "the record has another size");
_Static_assert(alignof(QuorPrinterStatus_2) == 4, "the record has another alignment");

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
