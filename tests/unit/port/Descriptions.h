#pragma once

#include <cstdint>

namespace quordalvane::test {

/// How many descriptions of bytes the port and its log statements have requested so far. The linker
/// redirects the calls to functions that count; the product itself does not count.
std::uint64_t descriptionsMade();

}  // namespace quordalvane::test
