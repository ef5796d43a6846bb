#pragma once

#include <cstdint>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A picture: rows of pixels 0x00RRGGBB, beginning at the top left.
struct Picture {
  unsigned width = 0;
  unsigned height = 0;
  std::vector<std::uint32_t> pixels;
};

/// Returns a picture of the paper, in which each dot is one pixel. The picture has margins beside
/// the print, and torn edges where the paper was cut. A symbol whose data cannot be encoded is
/// replaced by its name. The remarks on the paper (see `remarksOn`) are written below the paper.
/// May be called from any thread.
Picture renderPicture(const Paper& paper);

/// Returns the picture of `renderPicture` as a PNG file. This needs little more memory than the
/// file, however long the paper is. Returns empty if the file cannot be created, for example for
/// lack of memory.
Bytes renderPng(const Paper& paper);

/// The PNG file of `renderPng`, with the size of the picture in dots. A picture of more than
/// `pieceRows` rows is also given in pieces of `pieceRows` rows, from the top, because few programs
/// show a picture of many metres. The last piece may be shorter. `pieceRows` must not be 0.
struct PngPicture {
  unsigned width = 0;
  unsigned height = 0;
  Bytes png;
  std::vector<Bytes> pieces;  ///< PNG files; empty if the picture has at most `pieceRows` rows
};
PngPicture renderPngPicture(const Paper& paper, unsigned pieceRows);

}  // namespace quordalvane::simulator
