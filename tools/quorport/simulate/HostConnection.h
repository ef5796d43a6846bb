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

/// Carries bytes between a line to a host and the printer's link, as long as both last. Takes from
/// the line only what the printer has space for, so that a slow printer holds its host up, and a
/// few bytes more, among which the printer hears requests. The bytes of a host that has left are
/// still passed to the printer, as it has space again.
class HostConnection {
 public:
  /// The link must outlive this.
  HostConnection(std::unique_ptr<Line> line, simulator::PrinterLink& link);

  /// Adds the descriptors that the connection waits for.
  void await(std::vector<pollfd>& awaited) const;

  /// When it must work without anything that was waited for; empty if never.
  std::optional<simulator::Instant> nextEvent(simulator::Instant now) const;

  /// Does all that can be done now.
  void work(simulator::Instant now);

  bool isOver() const { return over_; }

  /// Whether nothing is under way in either direction, so that the line can be taken back.
  bool isIdle() const { return incoming_.empty() && outgoing_.empty() && !wasDropped(); }

  /// Takes the line back from an idle connection, which is of no use then.
  std::unique_ptr<Line> release() { return std::move(line_); }

  /// Takes from the line, up to a limit, even if the printer has no space, until the printer has
  /// taken all of it. Bytes under way hide from us whether the host has left.
  void readAhead() { readsAhead_ = true; }
  bool readsAhead() const { return readsAhead_; }

  /// Whether the host will send nothing more, and all that it sent has been taken from the line.
  bool hostEnded() const { return hostEnded_; }

  /// Whether it was the printer that ended it.
  bool wasDropped() const { return lastSettling_.has_value(); }

  /// When the host last sent bytes; empty if never.
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
  std::vector<std::uint8_t> incoming_;  // the bytes that the printer has not taken yet
  std::size_t passedOn_ = 0;            // of these: the number that it has taken
  bool readsAhead_ = false;
  bool hostEnded_ = false;
  bool over_ = false;
  std::optional<simulator::Instant> lastReceived_;
  std::optional<simulator::Instant> lastSettling_;  // since the drop: when it is over at the latest
};

}  // namespace quordalvane::tool
