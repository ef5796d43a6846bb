#pragma once

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The picture in a bitmap file of the type BM without compression, of 1, 4, 8 or 24 bits a dot:
/// its darker half is black. Null sizes if the file is of another kind, too short, or too large for
/// paper.
Bitmap fromBitmapFile(ByteView file);

}  // namespace quordalvane::simulator
