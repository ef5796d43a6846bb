#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "logging/LogRecord.h"

namespace quordalvane {

/// Records that are passed to the sinks together. Cleared records keep their memory, and the
/// callers of `add` get this memory for their next records. Otherwise each logging thread would
/// allocate memory and the writer thread would free it, which costs both threads several times as
/// much.
class RecordBatch {
 public:
  /// The records in the order in which they were added. The span is valid until the batch is
  /// changed.
  /// @{
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  std::span<const LogRecord> records() const noexcept { return {slots_.data(), size_}; }
  /// @}

  /// Allocates memory for `records` records in total, so that `add` need not allocate.
  void reserve(std::size_t records) { slots_.reserve(records); }

  /// Returns how many records in total `add` can take without an allocation.
  std::size_t capacity() const noexcept { return slots_.capacity(); }

  /// Moves `record` into the batch. The value of `record` is unspecified afterwards; it may hold
  /// the memory of a removed record.
  void add(LogRecord& record);

  /// Removes all records but keeps their memory. Frees only the memory of very long messages.
  void clear() noexcept;

 private:
  std::vector<LogRecord> slots_;  // slots_[size_] and later slots hold cleared records
  std::size_t size_ = 0;
};

}  // namespace quordalvane
