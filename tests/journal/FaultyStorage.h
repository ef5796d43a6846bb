#pragma once

#include <cstdint>

namespace quordalvane::test {

/// A layer below SQLite that makes a call fail on purpose, as on a bad disk. As long as the object
/// lives, every database of the process uses the layer. Only one object may exist at a time.
class FaultyStorage {
 public:
  /// Counts the calls that open a file, write, synchronize, truncate or map shared memory. The call
  /// with the number `failing` fails; the first call has the number 1. If `failing` is 0, no call
  /// fails. If `andAllLater` is true, all later calls also fail.
  explicit FaultyStorage(std::uint64_t failing, bool andAllLater = false);
  ~FaultyStorage();
  FaultyStorage(const FaultyStorage&) = delete;
  FaultyStorage& operator=(const FaultyStorage&) = delete;

  /// The number of counted calls so far.
  std::uint64_t calls() const;
};

}  // namespace quordalvane::test
