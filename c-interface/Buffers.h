#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "c-interface/Failures.h"

// How texts and bytes enter and leave the library: copied, from and into the caller's buffers.

namespace quordalvane::c {

/// The caller's buffer. `length` may be null, and so may `bytes` if `capacity` is 0.
struct Buffer {
  void* bytes;
  std::size_t capacity;
  std::size_t* length;
};

/// The buffer, if a result can be copied into it. Throws QUOR_USAGE for null bytes with a capacity:
/// called before an exchange, whose result would otherwise be lost.
const Buffer& usable(const Buffer& buffer);

/// Copies and stores the length. Throws QUOR_BUFFER_TOO_SMALL, with the length stored, if there are
/// more bytes than the buffer takes.
void copyBytes(std::span<const std::uint8_t> bytes, const Buffer& buffer);

/// Copies a text and a NUL after it; otherwise the same. Without a text the answer is QUOR_NONE and
/// the length 0.
QuorCode copyText(const std::optional<std::string>& text, const Buffer& buffer);

/// A copy of the caller's bytes. Throws QUOR_USAGE if `bytes` is null and `size` is not 0.
std::vector<std::uint8_t> copyOf(const void* bytes, std::size_t size);

/// The text; empty for null.
inline std::optional<std::string> textOrNone(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

}  // namespace quordalvane::c
