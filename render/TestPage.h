#pragma once

#include "render/CodePage.h"
#include "render/Output.h"

namespace quordalvane::render {

/// Prints the characters of a code page, 16 in a line. Each line is printed twice: first with the
/// printer's own letters and then, below, as a picture. If the two differ, the printer lacks the
/// code page or has another code page with this number. `width` is in dots and must be a multiple
/// of 8.
void printTestPage(CodePage page, unsigned width, const Output& output);

}  // namespace quordalvane::render
