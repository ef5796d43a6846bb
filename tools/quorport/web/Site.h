#pragma once

#include <deque>
#include <string>

#include "tools/http/Server.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/web/PrinterShow.h"
#include "tools/quorport/web/ReceiptShelf.h"

namespace quordalvane::tool {

/// The addresses that browsers ask for, and what is found there; see docs/browser.md.
class Site {
 public:
  /// All of these must outlive it.
  Site(std::deque<PrinterShow>& printers, const ReceiptShelf& receipts, Control& control)
      : printers_(printers), receipts_(receipts), control_(control) {}

  /// `events` are those that readers are sent; `now` is for control lines.
  http::Answer answer(const http::Request& request, const http::EventLog& events,
                      simulator::Instant now);

 private:
  http::Answer get(const http::Request& request, const http::EventLog& events) const;
  http::Answer post(const http::Request& request, simulator::Instant now);
  http::Answer receipt(const http::Request& request) const;
  http::Answer readEvents(const http::Request& request, const http::EventLog& events) const;
  Json snapshot() const;

  std::deque<PrinterShow>& printers_;
  const ReceiptShelf& receipts_;
  Control& control_;
};

}  // namespace quordalvane::tool
