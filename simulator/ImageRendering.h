#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Canvas.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The longest paper that a picture shows, in dots: two metres. A longer one ends with a remark.
inline constexpr unsigned longestPicture = 16'000;

/// The paper as a picture, a pixel a dot, with the margins beside the print and torn edges where it
/// was cut. A symbol whose data cannot be encoded is named in its place; the remarks on the paper
/// are below it.
Picture renderPicture(const Paper& paper);

/// The same as a PNG file. Empty if it cannot be drawn, as without memory.
Bytes renderPng(const Paper& paper);

}  // namespace quordalvane::simulator
