#pragma once

#include <cstdint>
#include <vector>

#include "simulator/CommandScanner.h"
#include "simulator/Typesetter.h"

namespace quordalvane::simulator {

/// The print side of the machine: what happens to a byte when the print position reaches it.
class Printing {
 public:
  explicit Printing(unsigned paperWidth) : typesetter_(paperWidth) {}

  /// Works through one byte. Tells the ETB that it completes, or `CommandKind::Printing`.
  CommandKind pass(std::uint8_t byte);

  /// No end will come for a command that has begun; the next byte starts a new one.
  void leaveUnfinishedCommand();

  /// Nothing more will come for a line that has begun.
  void endLine() { typesetter_.endLine(); }

  /// The print data that has been worked through since the paper was last torn off, byte for byte,
  /// without the ETBs.
  const std::vector<std::uint8_t>& printed() const { return printed_; }

  const Paper& paper() const { return typesetter_.paper(); }
  Paper tearOff();

 private:
  CommandScanner scanner_;
  Typesetter typesetter_;
  std::vector<std::uint8_t> undecided_;  // the start of what may become an ETB
  std::vector<std::uint8_t> printed_;
};

}  // namespace quordalvane::simulator
