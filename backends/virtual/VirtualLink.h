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

/// The simulated printer of an accessory, and the faults of the printer's links. The mutex guards
/// the printer and its links.
struct PrinterInside {
  std::mutex mutex;
  std::unique_ptr<simulator::VirtualPrinter> printer;
  simulator::Faults faults;  // the faults that each new link begins with
};

/// One connection to a simulated printer. A session, its streams and its accessory share the
/// connection. Each call first advances the printer to the current time of `clock`. Any thread may
/// call the functions.
class VirtualLink {
 public:
  VirtualLink(std::shared_ptr<PrinterInside> inside, Clock& clock);
  ~VirtualLink();
  VirtualLink(const VirtualLink&) = delete;
  VirtualLink& operator=(const VirtualLink&) = delete;

  /// Returns true if the link has dropped and all bytes that arrived before the drop were read.
  /// Returns false after `close`, because a closed link is not lost.
  bool isLost();

  /// If the link has dropped, `isLost` returns true from now on even if bytes are left to read.
  void noticeLoss();

  bool hasSpace();
  bool hasBytes();

  /// Returns false if no reply can arrive.
  bool expectsBytes();

  /// Sets whether the printer can answer the bytes of later writes; initially it can.
  void setMayBeAnswered(bool mayBeAnswered);
  std::int64_t write(std::span<const std::uint8_t> bytes);
  std::int64_t read(std::span<std::uint8_t> bytes);

  /// Ends the connection. Afterwards there are no bytes to read and there is no space to write.
  void close();

  /// Wait for bytes to read, or for space to write. Each wait also ends if the link is lost or
  /// `seconds` have passed.
  void waitForBytes(double seconds);
  void waitForSpace(double seconds);

 private:
  enum class Awaited { Bytes, Space };
  void wait(Awaited awaited, double seconds);
  bool isReady(Awaited awaited);

  const std::shared_ptr<PrinterInside> inside_;
  Clock& clock_;
  std::unique_ptr<simulator::PrinterLink> link_;  // null after `close`
  ReplyExpectation expectation_;
  bool lossNoticed_ = false;
};

}  // namespace quordalvane::virtuals
