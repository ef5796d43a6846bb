#pragma once

#include <cstdint>
#include <string>

namespace quordalvane {

/// A count as people read it: "1,204".
std::string grouped(std::uint64_t count);

}  // namespace quordalvane
