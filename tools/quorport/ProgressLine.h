#pragma once

#include <cstdint>

namespace quordalvane::tool {

/// A line on a terminal that counts the bytes as they go out, and is gone at the end. Where the
/// descriptor is no terminal nothing is shown.
class ProgressLine {
 public:
  explicit ProgressLine(int descriptor);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(std::uint64_t done, std::uint64_t total);

 private:
  const int descriptor_;
  const bool isShown_;
};

}  // namespace quordalvane::tool
