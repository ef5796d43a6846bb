#pragma once

#include <string_view>

#include "simulator/Paper.h"
#include "simulator/drawing/Plane.h"

namespace quordalvane::simulator {

/// Draws characters in the cells of their style; the top left corner of the first cell is at `x`,
/// `y`. If the monospaced font lacks a character, another font draws it. If the machine has no
/// font, each character is a small block, so that there is always a picture. May be called from any
/// thread.
void drawText(Plane& plane, std::u32string_view characters, const TextStyle& style, int x, int y,
              std::uint8_t darkness);

}  // namespace quordalvane::simulator
