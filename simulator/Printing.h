#pragma once

#include <cstdint>

#include "simulator/CommandScanner.h"
#include "simulator/LackedCommands.h"
#include "simulator/Macro.h"
#include "simulator/Typesetter.h"

namespace quordalvane::simulator {

/// The print side of the machine: carries out print data when the print position reaches it.
class Printing {
 public:
  explicit Printing(unsigned paperWidth) : typesetter_(paperWidth) {}

  /// From the next command on the printer knows the commands of this dialect.
  void setDialect(const Dialect& dialect);

  /// The commands that the printer does not have from the next one on: they are unknown.
  void setLacked(const LackedCommands& lacked) { lacked_ = lacked; }

  /// The characters that the printer has from now on.
  void setCharacterSets(const CharacterSets& sets) { typesetter_.setCharacterSets(sets); }

  /// Works through one byte of print data, the one at `offset` of the job. True if it completed a
  /// command or a character.
  bool pass(std::uint8_t byte, std::uint64_t offset);

  /// The complete command, until the next byte.
  ByteView command() const { return scanner_.bytes(); }

  /// Carries out the next command of a macro that a byte has set going; false if there is none. To
  /// be called before the next byte, until it returns false.
  bool goOn();

  /// A command that has begun will have no end; the next byte starts a new one.
  void leaveUnfinishedCommand();

  /// Ends a line that has begun.
  void endLine() { typesetter_.endLine(); }

  /// The job is over.
  void endJob() { typesetter_.endJob(); }

  /// The answer to a command that asks for the size of a symbol, when its turn comes.
  Bytes sizeReply(ByteView command) const { return typesetter_.sizeReply(command); }

  JobRecord& record() { return typesetter_.record(); }
  const Paper& paper() const { return typesetter_.paper(); }
  Paper tearOff();

  /// A macro under way ends with it.
  Paper tearOffFinishedLines();

 private:
  void carryOut(ByteView command);
  void set(ByteView command);

  Dialect dialect_;
  LackedCommands lacked_;
  CommandScanner scanner_;
  std::uint64_t begin_ = 0;  // the offset of the command that has begun
  Macro macro_;
  Typesetter typesetter_;
};

}  // namespace quordalvane::simulator
