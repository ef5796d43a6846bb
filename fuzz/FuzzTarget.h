#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

// What every fuzz target has: the entry point, which is called with each input, and a way to say
// what must hold. A target is linked with a fuzzing engine, or with replay.cpp, which feeds it
// files.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quordalvane::fuzz {

using Bytes = std::vector<std::uint8_t>;

/// Ends the program where something does not hold; fuzzing engines and ctest see that.
inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace quordalvane::fuzz
