#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "logging/LogRecord.h"

namespace quordalvane {

/// The records that the sinks are given together. It keeps the memory of the records that it has
/// given up and hands it to the caller that adds the next one: threads that log would otherwise
/// allocate the memory that the writer frees, which costs both of them several times as much.
class RecordBatch {
 public:
  /// The records that were added, in their order. The span is valid until the batch is changed.
  /// @{
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  std::span<const LogRecord> records() const noexcept { return {slots_.data(), size_}; }
  /// @}

  /// Lets `add` take so many records in all without an allocation.
  void reserve(std::size_t records) { slots_.reserve(records); }

  /// How many records `add` takes in all without an allocation.
  std::size_t capacity() const noexcept { return slots_.capacity(); }

  /// Adds the record. Leaves one in its place that was given up before, or an empty one.
  void add(LogRecord& record);

  /// Gives all records up, the longest with their memory.
  void clear() noexcept;

 private:
  std::vector<LogRecord> slots_;  // those after the first size_ are given up
  std::size_t size_ = 0;
};

}  // namespace quordalvane
