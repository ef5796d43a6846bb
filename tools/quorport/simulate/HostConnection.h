#pragma once

#include <poll.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "simulator/PrinterLink.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// Carries bytes between a line to a host and the printer's link, as long as both stand. Takes from
/// the line only what the printer has space for, so that a slow printer holds its host up.
class HostConnection {
 public:
  /// The link must outlive this.
  HostConnection(std::unique_ptr<Line> line, simulator::PrinterLink& link);

  /// Adds what the connection waits for.
  void await(std::vector<pollfd>& awaited, simulator::Instant now) const;

  /// When it must work without anything that was waited for; none if never.
  std::optional<simulator::Instant> nextEvent(simulator::Instant now) const;

  /// Does all that can be done now.
  void work(simulator::Instant now);

  bool isOver() const { return over_; }

  /// Whether it was the printer that ended it.
  bool wasDropped() const { return lastSettling_.has_value(); }

  /// When the host last sent bytes; none if never.
  std::optional<simulator::Instant> lastReceived() const { return lastReceived_; }

 private:
  bool takes(simulator::Instant now) const;
  void takeFromHost(simulator::Instant now);
  void giveToHost(simulator::Instant now);
  void followDrop(simulator::Instant now);

  const std::unique_ptr<Line> line_;
  simulator::PrinterLink& link_;
  std::vector<std::uint8_t> outgoing_;
  bool hostEnded_ = false;
  bool over_ = false;
  std::optional<simulator::Instant> lastReceived_;
  std::optional<simulator::Instant> lastSettling_;  // since the drop: when it is over at the latest
};

}  // namespace quordalvane::tool
