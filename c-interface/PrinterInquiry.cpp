// The functions that query a printer and check its answers.

#include "job/PrinterInquiry.h"

#include <algorithm>

#include "c-interface/Buffers.h"
#include "c-interface/Handles.h"

using namespace quordalvane;
using namespace quordalvane::c;

namespace {

PrinterInquiry inquiry(QuorPort* port) {
  return PrinterInquiry(given(port, "the port").port);
}

}  // namespace

QuorCode quor_printer_status(QuorPort* port, QuorPrinterStatus_2* status, uint32_t level) {
  return guarded([&] { given(status, "the status") = inquiry(port).status(level); });
}

QuorCode quor_printer_is_online(QuorPort* port, int32_t* online) {
  return guarded([&] { given(online, "the answer") = inquiry(port).isOnline(); });
}

QuorCode quor_printer_firmware(QuorPort* port, char* text, size_t capacity, size_t* length) {
  return guarded([&] {
    const Buffer place = usable({text, capacity, length});
    return copyText(inquiry(port).firmware(), place);
  });
}

QuorCode quor_printer_dip_switches(QuorPort* port, uint8_t* settings) {
  return guarded([&] {
    given(settings, "the settings");
    for (const auto& bank : inquiry(port).dipSwitches()) {
      settings = std::copy(bank.begin(), bank.end(), settings);
    }
  });
}

QuorCode quor_printer_button_security_timeout(QuorPort* port, uint32_t* milliseconds) {
  return guarded([&] {
    given(milliseconds, "the time-out") =
        static_cast<uint32_t>(inquiry(port).buttonSecurityTimeout().count());
  });
}

QuorCode quor_printer_proof(QuorPort* port, int32_t* proof) {
  return guarded(
      [&] { given(proof, "the proof") = static_cast<std::int32_t>(inquiry(port).proof()); });
}

QuorCode quor_printer_drop_all(QuorPort* port) {
  return guarded([&] { inquiry(port).dropAll(); });
}

QuorCode quor_printer_disconnect(QuorPort* port) {
  return guarded([&] { inquiry(port).disconnect(); });
}
