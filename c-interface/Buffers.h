#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "c-interface/Failures.h"
#include "job/ByteView.h"

// Functions that copy results into the caller's buffers, and functions that copy the caller's texts
// and bytes.

namespace quordalvane::c {

/// A buffer of the caller. `length` may be null. `bytes` may be null if `capacity` is 0.
struct Buffer {
  void* bytes;
  std::size_t capacity;
  std::size_t* length;
};

/// Checks that a result can be copied into the buffer and returns the buffer. Throws QUOR_USAGE if
/// `bytes` is null and `capacity` is not 0. Call it before an exchange with the printer, so that
/// the result of the exchange is not lost.
const Buffer& usable(const Buffer& buffer);

/// Copies the bytes into the buffer and stores their number. If the buffer is too small, stores
/// only the number and throws QUOR_BUFFER_TOO_SMALL.
void copyBytes(ByteView bytes, const Buffer& buffer);

/// Copies `text` and a final NUL into the buffer, stores the length of `text` without the NUL, and
/// returns QUOR_OK. If `text` is nullopt, copies nothing, stores the length 0 and returns
/// QUOR_NONE. If the buffer is too small, stores only the length and throws QUOR_BUFFER_TOO_SMALL.
QuorCode copyText(const std::optional<std::string>& text, const Buffer& buffer);

/// Returns a copy of the caller's bytes. Throws QUOR_USAGE if `bytes` is null and `size` is not 0.
std::vector<std::uint8_t> copyOf(const void* bytes, std::size_t size);

/// Returns the text, or nullopt for a null pointer.
inline std::optional<std::string> textOrNone(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

}  // namespace quordalvane::c
