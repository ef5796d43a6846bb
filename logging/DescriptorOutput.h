#pragma once

#include <cstddef>
#include <string_view>
#include <system_error>

namespace quordalvane {

/// The bytes of a write that the system took, and the error that ended it early, if any.
struct WriteOutcome {
  std::size_t written = 0;
  std::error_code error;
};

/// Writes all of `bytes` to the descriptor, which may be a non-blocking one; waits as long as that
/// takes.
WriteOutcome writeAll(int descriptor, std::string_view bytes) noexcept;

}  // namespace quordalvane
