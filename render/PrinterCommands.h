#pragma once

#include <array>
#include <cstdint>

namespace quordalvane::render {

// The commands at the beginning and end of a document. They are the same in line mode and in
// ESC/POS.

/// Resets the printer's settings and selects the US ASCII character set.
inline constexpr std::array<std::uint8_t, 5> initialize = {0x1b, 0x40, 0x1b, 0x52, 0x00};

/// Feeds the paper until the last line is past the knife, and cuts it, leaving one point uncut.
inline constexpr std::array<std::uint8_t, 4> cutPaper = {0x1d, 0x56, 0x42, 0x00};

/// Returns the command that sends a pulse of 100 ms to cash drawer 1 or 2, followed by a pause of
/// 500 ms.
constexpr std::array<std::uint8_t, 5> openDrawer(unsigned drawer) {
  return {0x1b, 0x70, static_cast<std::uint8_t>(drawer - 1), 50, 250};
}

}  // namespace quordalvane::render
