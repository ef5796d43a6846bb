#pragma once

#include <cstdint>
#include <deque>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The received bytes of the current job, and after them the bytes that have not been printed yet.
/// Stores only the first bytes of a long job.
class JobBytes {
 public:
  static constexpr std::size_t mostKept = std::size_t{1} << 20U;

  /// Adds received bytes.
  void receive(ByteView bytes);

  /// Assigns bytes to the job: the first `position` of all bytes ever received have been printed.
  void pass(std::uint64_t position);

  /// Ends the job. Returns its first bytes, and in `count` the number of all its bytes.
  struct Job {
    Bytes bytes;
    std::uint64_t count = 0;
  };
  Job take();

 private:
  void passOne();

  std::deque<std::uint8_t> held_;
  std::uint64_t passed_ = 0;  // of all bytes ever received
  Job job_;
};

}  // namespace quordalvane::simulator
