#pragma once

#include "render/Dither.h"
#include "render/Output.h"

namespace quordalvane::render {

/// Turns a picture in PNG or JPEG into raster images for the printer. A picture wider than `width`,
/// in dots, is scaled down to it; a narrower one is placed at the left. White rows at its top and
/// end are left out. Throws RenderError for a file that cannot be printed, perhaps after some of it
/// was handed on.
void printPicture(ByteView file, unsigned width, DitherKind dither, const Output& output);

}  // namespace quordalvane::render
