#pragma once

#include "simulator/drawing/PaperLayout.h"
#include "simulator/drawing/Plane.h"

namespace quordalvane::simulator {

/// Draws the items of a paper of width `paperWidth` on a plane of the same width. The top of the
/// plane is `top` dots below the top of the layout. May be called from any thread.
void paint(Plane& plane, const PaperLayout& layout, unsigned top);

}  // namespace quordalvane::simulator
