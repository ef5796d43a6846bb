#pragma once

#include <cstdint>
#include <functional>

#include "simulator/Bytes.h"
#include "simulator/CommandScanner.h"
#include "simulator/LackedCommands.h"

namespace quordalvane::simulator {

/// The receiving part of the printer: finds the commands that act at once, and passes on all other
/// bytes, in order, for printing.
class Reception {
 public:
  /// Sets the dialect that the printer knows, from the next command on.
  void setDialect(const Dialect& dialect) { scanner_.setDialect(dialect); }

  /// Sets the commands that the printer lacks. From now on, such a command counts as print
  /// data.
  void setLacked(const LackedCommands& lacked) { lacked_ = lacked; }

  using OnPiece = std::function<void(MachineCommand, ByteView)>;

  /// Processes `bytes`. Calls `onPiece`, in the order of the stream, with each complete command for
  /// which `actsOnReception` or `actsInTurn` is true. All other bytes are passed to `onPiece` as
  /// `MachineCommand::Printing`, in pieces of any size. If `vanish` is true, each command that
  /// begins in `bytes` is lost as a whole, unless it acts at once.
  void take(ByteView bytes, bool vanish, const OnPiece& onPiece);

  /// Returns the count of bytes that are held because they may begin a command that acts at once.
  std::size_t undecided() const { return undecided_.size(); }

  /// Returns how many bytes at the start of `bytes` belong to commands that act at once. The last
  /// command may be unfinished. The counted bytes need no space in the print buffer.
  std::size_t actingAtOnce(ByteView bytes) const;

  /// Forgets an unfinished command; the next byte starts a new one.
  void restart();

 private:
  void passOn(MachineCommand command, const OnPiece& onPiece);
  void passOnForPrinting(const OnPiece& onPiece);

  MachineCommand completeCommand(const CommandScanner& scanner) const;

  LackedCommands lacked_;
  CommandScanner scanner_;
  bool vanishes_ = false;  // true if the current command is lost
  Bytes undecided_;
  Bytes forPrinting_;  // bytes that will be passed on together
};

}  // namespace quordalvane::simulator
