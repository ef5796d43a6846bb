#include "logging/RecordBatch.h"

#include <utility>

namespace quordalvane {
namespace {

// This size is enough for nearly every message. Only dumps of print data are longer, and they are
// rare.
constexpr std::size_t mostMemoryKept = 1024;

}  // namespace

void RecordBatch::add(LogRecord& record) {
  if (size_ == slots_.size()) {
    slots_.push_back(std::exchange(record, LogRecord()));
  } else {
    std::swap(slots_[size_], record);
  }
  ++size_;
}

void RecordBatch::clear() noexcept {
  for (LogRecord& record : std::span(slots_).first(size_)) {
    if (record.message.capacity() > mostMemoryKept) {
      std::string().swap(
          record.message);  // clears by a swap, because an assignment would keep the memory
    }
  }
  size_ = 0;
}

}  // namespace quordalvane
