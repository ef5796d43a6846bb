#pragma once

#include <cstdint>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A picture: rows of pixels 0x00RRGGBB from the top left.
struct Picture {
  unsigned width = 0;
  unsigned height = 0;
  std::vector<std::uint32_t> pixels;
};

/// The paper as a picture, a pixel a dot, with the margins beside the print and torn edges where it
/// was cut. A symbol whose data cannot be encoded is named in its place; the remarks on the paper
/// are below it. May be called from any thread.
Picture renderPicture(const Paper& paper);

/// The same as a PNG file, whose making takes little more memory than the file, however long the
/// paper is. Empty if it cannot be made, as without memory.
Bytes renderPng(const Paper& paper);

/// The same, with its size in dots.
struct PngPicture {
  unsigned width = 0;
  unsigned height = 0;
  Bytes png;
};
PngPicture renderPngPicture(const Paper& paper);

}  // namespace quordalvane::simulator
