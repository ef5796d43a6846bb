#pragma once

#include <cstddef>
#include <vector>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// A macro: the commands that a job sends between two commands 1d 3a (hex). While the job defines
/// the macro, the commands are executed as usual. The command 1d 5e executes them again. A macro
/// outlives its job and an initialisation.
class Macro {
 public:
  /// Executes the command 1d 3a: begins a definition, or ends the current one.
  void startOrEnd();

  /// Adds a command to the current definition, if there is one. After a command that does not fit,
  /// no further commands are added.
  void keep(ByteView command);

  /// Executes the command 1d 5e: starts to execute the macro `times` times. Returns false if there
  /// is nothing to execute, because no macro is defined or the job has executed
  /// `mostCommandsOfAJob` commands. If the definition of the macro has not ended, the definition is
  /// lost and the result is false.
  bool execute(unsigned times);

  /// Returns the next command to execute; null if there is none. Valid until the next call.
  const Bytes* next();

  /// Ends the current execution.
  void stop() { left_ = 0; }

  /// Ends the job. The next job may again execute `mostCommandsOfAJob` commands of macros.
  void endJob() { carriedOut_ = 0; }

  static constexpr std::size_t mostBytes = 2048;

  /// How many commands of macros one job may execute. Without this limit, a few bytes could keep
  /// the printer busy for ever.
  static constexpr std::size_t mostCommandsOfAJob = 100'000;

 private:
  bool isDefining_ = false;
  std::vector<Bytes> commands_;
  std::size_t size_ = 0;  // the size of the commands in bytes
  std::size_t next_ = 0;
  unsigned left_ = 0;  // how often the macro is still to be executed
  std::size_t carriedOut_ = 0;
};

}  // namespace quordalvane::simulator
