#pragma once

#include <cstdint>

namespace quordalvane {

/// Makes the printer drop the data that it has received and not yet printed, and opens a
/// data-cancel section.
inline constexpr std::uint8_t dataCancel[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00};

/// Closes the data-cancel section; has no effect if no data-cancel section is open.
inline constexpr std::uint8_t dataCancelEnd[] = {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

/// Asks an ESC/POS printer whether it is ready.
inline constexpr std::uint8_t statusRequest[] = {0x10, 0x04, 0x01};

}  // namespace quordalvane
