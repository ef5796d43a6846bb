#pragma once

#include "render/Output.h"

namespace quordalvane::render {

/// How the rows in a picture file must be turned, because the camera was not held upright.
struct Orientation {
  bool isTransposed = false;   ///< the rows of the file are columns of the picture
  bool isRightFirst = false;   ///< each row of the file is mirrored
  bool isBottomFirst = false;  ///< the rows of the file are in reverse order

  bool isUpright() const { return !isTransposed && !isRightFirst && !isBottomFirst; }
};

/// Reads the orientation from the EXIF data that a camera writes into a JPEG file. Returns an
/// upright orientation if there is none or the data is damaged.
Orientation orientationIn(ByteView exif);

}  // namespace quordalvane::render
