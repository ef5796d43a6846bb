#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>

#include "backends/ReplyExpectation.h"
#include "platform/Clock.h"
#include "simulator/PrinterLink.h"

namespace quordalvane::virtuals {

/// The printer that an accessory represents, and the faults of the links to it. The mutex guards
/// the printer and its links.
struct PrinterInside {
  std::mutex mutex;
  std::unique_ptr<simulator::VirtualPrinter> printer;
  simulator::Faults faults;  // of later links
};

/// One connection to a printer in this process, shared by a session, its streams and its accessory.
/// The printer uses `clock`: each call lets it work up to now. All calls may be made from any
/// thread.
class VirtualLink {
 public:
  VirtualLink(std::shared_ptr<PrinterInside> inside, Clock& clock);
  ~VirtualLink();
  VirtualLink(const VirtualLink&) = delete;
  VirtualLink& operator=(const VirtualLink&) = delete;

  /// True once the link has dropped and no byte that arrived before is left to read. False after
  /// `close`: a link that was given up is not lost.
  bool isLost();

  /// If the link has dropped, lets `isLost` say so although bytes are left to read.
  void noticeLoss();

  bool hasSpace();
  bool hasBytes();

  /// False while no reply can be on its way.
  bool expectsBytes();

  /// Whether the printer may answer bytes that are written from now on; it may until this is
  /// called.
  void setMayBeAnswered(bool mayBeAnswered);
  std::int64_t write(std::span<const std::uint8_t> bytes);
  std::int64_t read(std::span<std::uint8_t> bytes);

  /// Ends the connection; there are no bytes and no space any more.
  void close();

  /// Wait for at most `seconds` until there are bytes or space, or the link is lost.
  void waitForBytes(double seconds);
  void waitForSpace(double seconds);

 private:
  enum class Awaited { Bytes, Space };
  void wait(Awaited awaited, double seconds);
  bool isReady(Awaited awaited);

  const std::shared_ptr<PrinterInside> inside_;
  Clock& clock_;
  std::unique_ptr<simulator::PrinterLink> link_;  // null once closed
  ReplyExpectation expectation_;
  bool lossNoticed_ = false;
};

}  // namespace quordalvane::virtuals
