#pragma once

#include <cstdint>

namespace quordalvane {

/// Makes the printer drop the data that it has received and not yet printed, and opens a guarded
/// section.
inline constexpr std::uint8_t dataCancel[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00};

/// Closes the guarded section; does nothing if none is open.
inline constexpr std::uint8_t dataCancelEnd[] = {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

/// Asks an ESC/POS printer whether it is ready.
inline constexpr std::uint8_t statusRequest[] = {0x10, 0x04, 0x01};

}  // namespace quordalvane
