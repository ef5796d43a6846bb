#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane {

/// How many bytes the prefix of a port name takes: its first three characters, "BT:" by custom.
/// Null if the name has fewer. Names are UTF-8; a byte that belongs to no valid character counts as
/// one.
std::optional<std::size_t> prefixLength(std::string_view portName);

/// The message about a name that has fewer.
std::string tooShort(std::string_view portName);

}  // namespace quordalvane
