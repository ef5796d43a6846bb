#pragma once

#include <cstdint>
#include <deque>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// Collects the bytes of each job. Received bytes wait in a queue; after they are printed, `pass`
/// moves them to the current job. Of a long job only the first bytes are kept.
class JobBytes {
 public:
  static constexpr std::size_t mostKept = std::size_t{1} << 20U;

  /// Adds received bytes.
  void receive(ByteView bytes);

  /// Sets how much has been printed: the first `position` bytes of all bytes ever received. These
  /// bytes belong to the current job or to earlier jobs.
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
  std::uint64_t passed_ = 0;  // how many received bytes were printed
  Job job_;
};

}  // namespace quordalvane::simulator
