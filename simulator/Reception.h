#pragma once

#include <cstdint>
#include <functional>

#include "simulator/Bytes.h"
#include "simulator/CommandScanner.h"
#include "simulator/LackedCommands.h"

namespace quordalvane::simulator {

/// The receiving side of the machine: picks out of the stream the commands that act at once, and
/// passes all other bytes on for printing, in order.
class Reception {
 public:
  /// From the next command on the printer knows the commands of this dialect.
  void setDialect(const Dialect& dialect) { scanner_.setDialect(dialect); }

  /// The commands that the printer does not have from the next one on: they are print data.
  void setLacked(const LackedCommands& lacked) { lacked_ = lacked; }

  using OnPiece = std::function<void(MachineCommand, ByteView)>;

  /// Works through `bytes`; calls back in the order of the stream, with whole commands that act at
  /// once, whole ones that act in their turn, and all other bytes in pieces of any size as
  /// `MachineCommand::Printing`. With `vanish`, commands that begin in `bytes` are lost, to their
  /// ends, unless they act at once.
  void take(ByteView bytes, bool vanish, const OnPiece& onPiece);

  /// How many bytes are kept back because they may begin a command that acts at once.
  std::size_t undecided() const { return undecided_.size(); }

  /// How many of the first of `bytes` are requests and other commands that act at once, the last of
  /// them perhaps unfinished: these need no room among the print data.
  std::size_t actingAtOnce(ByteView bytes) const;

  /// Forgets an unfinished command: the next byte starts one.
  void restart();

 private:
  void passOn(MachineCommand command, const OnPiece& onPiece);
  void passOnForPrinting(const OnPiece& onPiece);

  MachineCommand completeCommand(const CommandScanner& scanner) const;

  LackedCommands lacked_;
  CommandScanner scanner_;
  bool vanishes_ = false;  // of the command that has begun: whether it is lost
  Bytes undecided_;
  Bytes forPrinting_;  // gathered to be passed on at once
};

}  // namespace quordalvane::simulator
