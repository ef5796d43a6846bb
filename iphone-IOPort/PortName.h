#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane {

/// Returns the length in bytes of the prefix of a port name. The prefix is the first three
/// characters, usually "BT:". Returns null if the name has fewer than three characters. Names are
/// UTF-8; a byte that does not belong to a valid character counts as one character.
std::optional<std::size_t> prefixLength(std::string_view portName);

/// Returns the error message for a name that has fewer than three characters.
std::string tooShort(std::string_view portName);

}  // namespace quordalvane
