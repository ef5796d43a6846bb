#pragma once

#include <poll.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "simulator/PrinterLink.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// Carries bytes between a host and the printer's link. The connection to the host is called the
/// line. This class reads from the line only as many bytes as the printer has space for, so that a
/// slow printer slows its host down. Even if the printer is full, this class reads a few bytes:
/// they may be a status request, which a full printer must also answer. If the host leaves, the
/// printer still gets the host's last bytes when it has space for them.
class HostConnection {
 public:
  /// The link must outlive this object.
  HostConnection(std::unique_ptr<Line> line, simulator::PrinterLink& link);

  /// Adds the descriptors that the connection waits for.
  void await(std::vector<pollfd>& awaited) const;

  /// Returns the time at which `work` must be called even if no descriptor is ready; empty if
  /// never.
  std::optional<simulator::Instant> nextEvent(simulator::Instant now) const;

  /// Does all that can be done now.
  void work(simulator::Instant now);

  bool isOver() const { return over_; }

  /// Returns true if this object holds no bytes for either side, and the printer has not ended the
  /// connection. Only in this case may `release` be called.
  bool isIdle() const { return incoming_.empty() && outgoing_.empty() && !wasDropped(); }

  /// Gives the line to the caller. Afterwards this object must not be used.
  std::unique_ptr<Line> release() { return std::move(line_); }

  /// After this call, this object reads up to about 16 MiB from the line even if the printer has
  /// no space. Otherwise unread bytes would hide that the host has left. The reading ahead ends
  /// when the printer has taken all bytes.
  void readAhead() { readsAhead_ = true; }
  bool readsAhead() const { return readsAhead_; }

  /// Returns true if the host will send no more bytes, and all bytes that it sent have been read
  /// from the line.
  bool hostEnded() const { return hostEnded_; }

  /// Returns true if the printer ended the connection.
  bool wasDropped() const { return lastSettling_.has_value(); }

  /// Returns the time at which the host last sent bytes; empty if it has sent none.
  std::optional<simulator::Instant> lastReceived() const { return lastReceived_; }

 private:
  bool wantsBytes() const;
  std::size_t wantedBytes(simulator::Instant now) const;
  void noticeHangUp();
  void noteHostEnded();
  void passOn(simulator::Instant now);
  void takeFromHost(simulator::Instant now);
  void giveToHost(simulator::Instant now);
  void followDrop(simulator::Instant now);

  std::unique_ptr<Line> line_;
  simulator::PrinterLink& link_;
  std::vector<std::uint8_t> outgoing_;
  std::vector<std::uint8_t> incoming_;  // bytes from the host, kept until the printer has all
  std::size_t passedOn_ = 0;            // how many of `incoming_` the printer has taken
  bool readsAhead_ = false;
  bool hostEnded_ = false;
  bool over_ = false;
  std::optional<simulator::Instant> lastReceived_;
  // The connection ends at this time or earlier. Empty until the printer drops the link.
  std::optional<simulator::Instant> lastSettling_;
};

}  // namespace quordalvane::tool
