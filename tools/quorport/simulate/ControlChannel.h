#pragma once

#include <poll.h>

#include <memory>
#include <string>
#include <vector>

#include "simulator/Instant.h"
#include "tools/quorport/simulate/Control.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// Lines in, answers out, on a pair of descriptors. Never waits for either side: while answers are
/// not taken no more lines are.
class ControlChannel {
 public:
  /// On descriptors that remain the caller's, which may be blocking ones. `control` must outlive
  /// this.
  ControlChannel(int in, int out, Control& control) : in_(in), out_(out), control_(control) {}

  /// On a line, both ways.
  ControlChannel(std::unique_ptr<Line> line, Control& control);

  /// Adds the descriptors that the channel waits for.
  void await(std::vector<pollfd>& awaited) const;

  /// Does all that can be done now.
  void work(simulator::Instant now);

  /// Writes lines of others, which have their ends, after the answers that wait. Waits itself for
  /// whoever reads while too many bytes wait.
  void say(const std::string& lines);

  /// Writes all that waits, however long that takes.
  void flush();

  /// Whether it has ended: no more lines, no more answers.
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
  bool skipsLine_ = false;  // the rest of a line that is too long has not arrived yet
  std::string answers_;
  bool inputEnded_ = false;
};

}  // namespace quordalvane::tool
