#pragma once

#include "render/Output.h"

namespace quordalvane::render {

/// How a camera was held, from the side from which its rows were written.
struct Orientation {
  bool isTransposed = false;   ///< the rows of the file are columns of the picture
  bool isRightFirst = false;   ///< each row of the file is mirrored
  bool isBottomFirst = false;  ///< the rows of the file are in reverse

  bool isUpright() const { return !isTransposed && !isRightFirst && !isBottomFirst; }
};

/// Reads it from the data in EXIF that a camera writes into a JPEG file. Upright if it is not
/// there, or the data are damaged.
Orientation orientationIn(ByteView exif);

}  // namespace quordalvane::render
