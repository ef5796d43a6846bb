#pragma once

#include "simulator/drawing/PaperLayout.h"
#include "simulator/drawing/Plane.h"

namespace quordalvane::simulator {

/// Draws the items of a paper that is `paperWidth` dots wide on a plane of that width, whose top is
/// `top` dots down the layout. May be called from any thread.
void paint(Plane& plane, const PaperLayout& layout, unsigned top);

}  // namespace quordalvane::simulator
