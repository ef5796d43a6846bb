#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::test {

using Bytes = std::vector<std::uint8_t>;

/// The bytes of a text of hexadecimal pairs: bytes("1b 06 01").
Bytes bytes(std::string_view pairs);

/// The characters of a text as bytes.
Bytes ascii(std::string_view text);

/// Returns the bytes of `first`, followed by those of `second`.
Bytes operator+(Bytes first, const Bytes& second);

/// "<1b 06 01>": how traces and records show bytes.
std::string shown(std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::test
