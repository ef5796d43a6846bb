#pragma once

#include <cstdint>

namespace quordalvane::test {

/// How many descriptions of bytes the port and its log statements have asked for so far. The linker
/// leads their calls through a count; the product counts nothing.
std::uint64_t descriptionsMade();

}  // namespace quordalvane::test
