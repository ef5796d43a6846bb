#pragma once

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// Returns the picture in a bitmap file of type BM. The file must be uncompressed and have 1, 4, 8
/// or 24 bits a dot. Dots in the darker half of the scale are black. The picture has the size 0 if
/// the file is of another kind, too short, or too large for paper.
Bitmap fromBitmapFile(ByteView file);

}  // namespace quordalvane::simulator
