#pragma once

#include "bench/ReceiptPrinter.h"
#include "iphone-IOPort/enum.h"

namespace quordalvane::bench {

/// A kind of printer, distinguished by how it confirms a receipt.
struct ReceiptKind {
  const char* name;
  ReceiptPrinter::Confirms confirms;
  ZKEmulation emulation;
  const char* keys;        ///< the part of the device text that names the proof; may be empty
  const char* goalOfSign;  ///< how soon the port should notice the confirmation
};

inline constexpr ReceiptKind receiptKinds[] = {
    {"line mode", ReceiptPrinter::Confirms::Count, ZKEmulationQuorLine, "", "<= 100 ms"},
    {"ESC/POS, checked block", ReceiptPrinter::Confirms::Report, ZKEmulationESCPOS, ",proof=block",
     "<= 200 ms"},
    {"ESC/POS, process ID", ReceiptPrinter::Confirms::ProcessId, ZKEmulationESCPOS,
     ",proof=process-id", "<= 20 ms"},
    {"ESC/POS, in-order status", ReceiptPrinter::Confirms::InOrder, ZKEmulationESCPOS,
     ",proof=in-order", "<= 20 ms"},
};

}  // namespace quordalvane::bench
