#pragma once

#include <array>
#include <cstdint>

namespace quordalvane::render {

// The commands around a document, the same in line mode and in ESC/POS.

/// Resets the printer's settings, and selects the letters of US ASCII.
inline constexpr std::array<std::uint8_t, 5> initialize = {0x1b, 0x40, 0x1b, 0x52, 0x00};

/// Feeds the last line past the knife and cuts the paper, except at one point.
inline constexpr std::array<std::uint8_t, 4> cutPaper = {0x1d, 0x56, 0x42, 0x00};

/// A pulse of 100 ms to cash drawer 1 or 2, with a pause of 500 ms after it.
constexpr std::array<std::uint8_t, 5> openDrawer(unsigned drawer) {
  return {0x1b, 0x70, static_cast<std::uint8_t>(drawer - 1), 50, 250};
}

}  // namespace quordalvane::render
