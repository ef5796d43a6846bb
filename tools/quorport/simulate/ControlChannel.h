#pragma once

#include <poll.h>

#include <memory>
#include <string>
#include <vector>

#include "simulator/Instant.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// Reads control lines from one descriptor and writes their answers to another. It never waits for
/// either descriptor. While nobody reads the answers, it reads no more lines.
class ControlChannel {
 public:
  /// Uses descriptors that remain the caller's; they may be blocking. `control` must outlive this
  /// object.
  ControlChannel(int in, int out, Control& control) : in_(in), out_(out), control_(control) {}

  /// Reads from and writes to `line`, and becomes its owner.
  ControlChannel(std::unique_ptr<Line> line, Control& control);

  /// Adds the descriptors that the channel waits for.
  void await(std::vector<pollfd>& awaited) const;

  /// Does all that can be done now.
  void work(simulator::Instant now);

  /// Queues lines that are not answers, after the pending answers. Each line must end in a line
  /// feed. If too many bytes are queued, blocks until all are written.
  void say(const std::string& lines);

  /// Writes all queued lines; blocks until they are written.
  void flush();

  /// Returns true if the input has ended and all answers are written.
  bool isOver() const { return inputEnded_ && answers_.empty(); }

  bool hasAnswers() const { return !answers_.empty(); }

 private:
  void readLines(simulator::Instant now);
  void takeLines(simulator::Instant now);
  void writeAnswers();

  std::unique_ptr<Line> line_;
  const int in_;
  const int out_;
  Control& control_;
  std::string unread_;
  bool skipsLine_ = false;  // true until the rest of a line that is too long has arrived
  std::string answers_;
  bool inputEnded_ = false;
};

}  // namespace quordalvane::tool
