#pragma once

#include <cstdint>

namespace quordalvane {

/// The command that begins a data cancel, and the command that ends the data cancel. A data cancel
/// makes a printer that supports the checked block drop the data that it holds. Without the second
/// command, the printer would drop the data of later jobs, if a data time-out was ever set.
inline constexpr std::uint8_t dropAll[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00,
                                           0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

/// The command that clears the buffer of an ESC/POS printer that does not support the checked
/// block. The printer answers with the bytes 37 25 00.
inline constexpr std::uint8_t clearBuffer[] = {0x10, 0x14, 0x08, 0x01, 0x03,
                                               0x14, 0x01, 0x06, 0x02, 0x08};

}  // namespace quordalvane
