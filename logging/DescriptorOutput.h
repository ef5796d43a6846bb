#pragma once

#include <cstddef>
#include <string_view>
#include <system_error>

namespace quordalvane {

/// The number of bytes that the system took, and the error that ended the write early, if an error
/// occurred.
struct WriteOutcome {
  std::size_t written = 0;
  std::error_code error;
};

/// Writes all of `bytes` to the descriptor, which may be non-blocking. Waits without a time limit.
WriteOutcome writeAll(int descriptor, std::string_view bytes) noexcept;

}  // namespace quordalvane
