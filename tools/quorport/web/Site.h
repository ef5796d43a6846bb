#pragma once

#include <deque>
#include <string>

#include "tools/http/Server.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/web/PrinterShow.h"
#include "tools/quorport/web/ReceiptShelf.h"
#include "tools/quorport/web/TrafficLog.h"

namespace quordalvane::tool {

/// Answers the requests of browsers; docs/browser.md describes the addresses.
class Site {
 public:
  /// The arguments must outlive this object.
  Site(std::deque<PrinterShow>& printers, const ReceiptShelf& receipts, const TrafficLog& traffic,
       Control& control)
      : printers_(printers), receipts_(receipts), traffic_(traffic), control_(control) {}

  /// Returns the answer to a request. `events` is the log from which browsers read events. If the
  /// request contains a control line, which is a command to the simulator, the command is executed
  /// at the time `now`.
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
  const TrafficLog& traffic_;
  Control& control_;
};

}  // namespace quordalvane::tool
