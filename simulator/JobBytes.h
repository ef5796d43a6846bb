#pragma once

#include <cstdint>
#include <deque>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The bytes of the job that is on the paper, as they were received, and after them those that are
/// still held. Of a long job only the first are kept.
class JobBytes {
 public:
  static constexpr std::size_t mostKept = std::size_t{1} << 20U;

  /// Bytes that have arrived.
  void receive(ByteView bytes);

  /// Of the bytes received ever the first `position` have been worked through: they are the job's.
  void pass(std::uint64_t position);

  /// Ends the job. Returns its first bytes; how many it had in all is in `count`.
  struct Job {
    Bytes bytes;
    std::uint64_t count = 0;
  };
  Job take();

 private:
  void passOne();

  std::deque<std::uint8_t> held_;
  std::uint64_t passed_ = 0;  // of the bytes received ever
  Job job_;
};

}  // namespace quordalvane::simulator
