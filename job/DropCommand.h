#pragma once

#include <cstdint>

namespace quordalvane {

/// A data cancel, which makes a printer with a checked block drop the data that it holds, and its
/// end, without which a printer that was ever given a data time-out would drop the data of later
/// jobs.
inline constexpr std::uint8_t dropAll[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00,
                                           0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

}  // namespace quordalvane
