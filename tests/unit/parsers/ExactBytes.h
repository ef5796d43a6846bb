#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace quordalvane::test {

/// A copy of bytes on the heap, of exactly their size: the address sanitizer then notices a read
/// beyond the end.
class ExactBytes {
 public:
  explicit ExactBytes(const std::vector<std::uint8_t>& bytes)
      : data_(std::make_unique<std::uint8_t[]>(bytes.size())),
        count_(static_cast<std::int32_t>(bytes.size())) {
    std::copy(bytes.begin(), bytes.end(), data_.get());
  }

  const std::uint8_t* data() const { return data_.get(); }
  std::int32_t count() const { return count_; }

 private:
  std::unique_ptr<std::uint8_t[]> data_;
  std::int32_t count_;
};

}  // namespace quordalvane::test
