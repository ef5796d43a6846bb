#pragma once

#include <cstdint>

namespace quordalvane::test {

/// A layer below SQLite that makes a call fail on purpose, as on a bad disk. As long as the object
/// lives, every database of the process uses the layer. Only one object may exist at a time.
class FaultyStorage {
 public:
  /// Makes the call with the number `failing` fail, counted from 1 over all opens, writes, syncs
  /// and truncations; 0 means no call. With `andAllLater` every later call fails too.
  explicit FaultyStorage(std::uint64_t failing, bool andAllLater = false);
  ~FaultyStorage();
  FaultyStorage(const FaultyStorage&) = delete;
  FaultyStorage& operator=(const FaultyStorage&) = delete;

  /// The number of calls so far.
  std::uint64_t calls() const;
};

}  // namespace quordalvane::test
