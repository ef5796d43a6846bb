#pragma once

#include <cstddef>
#include <vector>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The commands that a job defines between two 1d 3a, to be carried out again by 1d 5e. They are
/// also carried out while they are defined. They outlive the job and an initialisation.
class Macro {
 public:
  /// 1d 3a: begins a definition, or ends the one under way.
  void startOrEnd();

  /// Keeps a command if a definition is under way; from the first that finds no room on, none.
  void keep(ByteView command);

  /// 1d 5e: they are to be carried out so many times. False if there is nothing to be carried out:
  /// none are defined, a definition was under way, which is lost, or the job has carried out
  /// enough.
  bool execute(unsigned times);

  /// The next command to be carried out; null if there is none. Valid until the next call.
  const Bytes* next();

  /// Ends the execution under way.
  void stop() { left_ = 0; }

  /// The next job may carry out as much again.
  void endJob() { carriedOut_ = 0; }

  static constexpr std::size_t mostBytes = 2048;

  /// A few bytes of a job must not keep the printer busy for ever.
  static constexpr std::size_t mostCommandsOfAJob = 100'000;

 private:
  bool isDefining_ = false;
  std::vector<Bytes> commands_;
  std::size_t size_ = 0;  // of them, in bytes
  std::size_t next_ = 0;
  unsigned left_ = 0;  // times
  std::size_t carriedOut_ = 0;
};

}  // namespace quordalvane::simulator
