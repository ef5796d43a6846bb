#pragma once

#include <cstdint>

namespace quordalvane::test {

/// A layer below SQLite that fails a call on purpose, as a disk does. As long as it lives, every
/// database of the process lies on it. Only one may exist at a time.
class FaultyStorage {
 public:
  /// The call that fails: that of this number, counted from 1 over all opens, writes, syncs and
  /// truncations; 0 means no call. With `andAllLater` also every one after it.
  explicit FaultyStorage(std::uint64_t failing, bool andAllLater = false);
  ~FaultyStorage();
  FaultyStorage(const FaultyStorage&) = delete;
  FaultyStorage& operator=(const FaultyStorage&) = delete;

  /// The number of calls so far.
  std::uint64_t calls() const;
};

}  // namespace quordalvane::test
