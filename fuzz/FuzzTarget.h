#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

// Every fuzz target includes this file. This file declares the entry point, which is called with
// each input, and `require`, which checks a condition. A target is linked with a fuzzing engine, or
// with replay.cpp, which reads inputs from files.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quordalvane::fuzz {

using Bytes = std::vector<std::uint8_t>;

/// Aborts the program unless `holds` is true; fuzzing engines and ctest notice that.
inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace quordalvane::fuzz
