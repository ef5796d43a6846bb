#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/MachineCommand.h"

namespace quordalvane::simulator {

/// Cuts a byte stream into commands, a byte at a time, so that packets make no difference. Bytes
/// inside the counted payload of a command are data only. Uses no more memory than the longest
/// command that can be printed: the end of a longer one is counted and not kept.
class CommandScanner {
 public:
  /// From the next command on the printer knows the commands of this dialect.
  void setDialect(const Dialect& dialect) { nextDialect_ = dialect; }

  /// Takes the next byte; true if it completes a command.
  bool feed(std::uint8_t byte);

  /// The bytes of the command so far. A complete command is readable until the next byte.
  const Bytes& bytes() const { return bytes_; }

  /// The meaning of the complete command.
  MachineCommand command() const;

  /// True if the printer knows the complete command, be it only by its length.
  bool isKnown() const;

  /// True while an unfinished command may still turn out to be more than print data.
  bool mayConcernTheMachine() const;

  /// True after a first byte and before the last of a command.
  bool insideCommand() const { return length_ < needed_ && length_ > 0; }

  /// Forgets an unfinished command: the next byte starts one.
  void restart();

 private:
  Dialect dialect_;      // of the command that has begun
  Dialect nextDialect_;  // of those that follow
  Bytes bytes_;
  std::uint64_t length_ = 0;  // bytes of the command that have arrived, kept or not
  std::uint64_t needed_ = 1;  // bytes that must have arrived before it can be complete
};

}  // namespace quordalvane::simulator
