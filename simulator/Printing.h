#pragma once

#include <cstdint>

#include "simulator/CommandScanner.h"
#include "simulator/LackedCommands.h"
#include "simulator/Macro.h"
#include "simulator/Typesetter.h"

namespace quordalvane::simulator {

/// The printing part of the printer, which executes the print data in their order.
class Printing {
 public:
  explicit Printing(unsigned paperWidth) : typesetter_(paperWidth) {}

  /// Sets the dialect that the printer knows, from the next command on.
  void setDialect(const Dialect& dialect);

  /// Sets the commands that the printer lacks. From now on, `pass` records such a command as
  /// unknown and does not execute it.
  void setLacked(const LackedCommands& lacked) { lacked_ = lacked; }

  /// Sets the character sets of the printer.
  void setCharacterSets(const CharacterSets& sets) { typesetter_.setCharacterSets(sets); }

  /// Processes one byte of print data, which is at `offset` in the job. Returns true if the byte
  /// completed a command or a character.
  bool pass(std::uint8_t byte, std::uint64_t offset);

  /// Returns the complete command; valid until the next byte.
  ByteView command() const { return scanner_.bytes(); }

  /// Executes the next command of a running macro. Returns false if no command is left. After each
  /// call of `pass`, the caller must repeat `goOn` until it returns false.
  bool goOn();

  /// Drops an unfinished command, because its end will not arrive. The next byte starts a new
  /// command.
  void leaveUnfinishedCommand();

  /// Ends the current line, if it is not empty.
  void endLine() { typesetter_.endLine(); }

  /// Ends the job.
  void endJob() { typesetter_.endJob(); }

  /// Returns the answer to a command that asks for the size of a symbol. To be called when
  /// everything before the command is printed.
  Bytes sizeReply(ByteView command) const { return typesetter_.sizeReply(command); }

  /// Returns the answer to a command that asks for stored images. To be called when everything
  /// before the command is printed.
  Bytes graphicsReply(ByteView command) { return typesetter_.graphicsReply(command); }

  JobRecord& record() { return typesetter_.record(); }
  const Paper& paper() const { return typesetter_.paper(); }

  /// Ends the current line, tears the paper off and returns it.
  Paper tearOff();

  /// Tears the paper off in the middle of a job. A running macro ends. The current line does not
  /// end; it continues on the next paper.
  Paper tearOffFinishedLines();

 private:
  void carryOut(ByteView command);
  void set(ByteView command);

  Dialect dialect_;
  LackedCommands lacked_;
  CommandScanner scanner_;
  std::uint64_t begin_ = 0;  // where the current command begins in the job
  Macro macro_;
  Typesetter typesetter_;
};

}  // namespace quordalvane::simulator
