#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/MachineCommand.h"

namespace quordalvane::simulator {

/// Divides a byte stream into commands, byte by byte, so that the boundaries of packets do not
/// matter. Bytes inside the payload of a command are only data. A command longer than any that can
/// be printed is stored in part, and its other bytes are only counted.
class CommandScanner {
 public:
  /// Sets the dialect that the printer knows, from the next command on.
  void setDialect(const Dialect& dialect) { nextDialect_ = dialect; }

  /// Adds the next byte. Returns true if the byte completes a command.
  bool feed(std::uint8_t byte);

  /// Returns the bytes of the current command. A complete command remains available until `feed`
  /// adds the next byte.
  const Bytes& bytes() const { return bytes_; }

  /// Returns the effect of the complete command on the printer.
  MachineCommand command() const;

  /// Returns true if the printer knows the current command, which must be complete. A command
  /// whose length the printer knows is known, even if it has no effect.
  bool isKnown() const;

  /// Returns true while an unfinished command may still become a command for the printer itself,
  /// not only for the paper.
  bool mayConcernTheMachine() const;

  /// Returns true after the first byte of a command and before its last byte.
  bool insideCommand() const { return length_ < needed_ && length_ > 0; }

  /// Forgets an unfinished command; the next byte starts a new one.
  void restart();

 private:
  Dialect dialect_;      // the dialect for the current command
  Dialect nextDialect_;  // the dialect for all later commands
  Bytes bytes_;
  std::uint64_t length_ = 0;  // how many bytes of the command have arrived, stored or not
  std::uint64_t needed_ = 1;  // how many bytes the command must have at least
};

}  // namespace quordalvane::simulator
