#pragma once

#include "render/CodePage.h"
#include "render/Output.h"

namespace quordalvane::render {

/// Prints the characters of a code page, 16 in a line. Each line is printed twice: first with the
/// printer's own letters and then, below, drawn as a picture. If the two differ, the printer lacks
/// the page or has another page under this number. `width` is in dots and must be a multiple of 8.
void printTestPage(CodePage page, unsigned width, const Output& output);

}  // namespace quordalvane::render
