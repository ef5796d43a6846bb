#pragma once

#include <cstdint>

namespace quordalvane {

/// Makes the printer drop what it has received and not yet printed, and opens a guarded stretch.
inline constexpr std::uint8_t dataCancel[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00};

/// Closes the guarded stretch; does nothing where none is open.
inline constexpr std::uint8_t dataCancelEnd[] = {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

/// Asks an ESC/POS printer whether it is ready.
inline constexpr std::uint8_t statusRequest[] = {0x10, 0x04, 0x01};

}  // namespace quordalvane
