#pragma once

#include <cstdint>

namespace quordalvane {

/// A command that begins a data cancel, and a command that ends it. At the first command, a printer
/// that supports the checked block drops the data that it holds. The second command is needed
/// because a data time-out has an effect only during a data cancel: if an earlier job has set this
/// time-out, the printer would otherwise drop the data of later jobs after a pause in that data.
inline constexpr std::uint8_t dropAll[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00,
                                           0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

/// The command that clears the buffer of an ESC/POS printer that does not support the checked
/// block. The printer answers with the bytes 37 25 00.
inline constexpr std::uint8_t clearBuffer[] = {0x10, 0x14, 0x08, 0x01, 0x03,
                                               0x14, 0x01, 0x06, 0x02, 0x08};

}  // namespace quordalvane
