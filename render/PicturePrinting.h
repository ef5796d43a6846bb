#pragma once

#include "render/Dither.h"
#include "render/Output.h"

namespace quordalvane::render {

/// Turns a PNG or JPEG picture into raster images for the printer. A picture that is wider than
/// `width` dots is scaled down to this width; a narrower one is printed at the left. White rows at
/// the top and at the bottom are left out. Throws RenderError if the file cannot be printed; a part
/// of it may have been passed to `output` before.
void printPicture(ByteView file, unsigned width, DitherKind dither, const Output& output);

}  // namespace quordalvane::render
