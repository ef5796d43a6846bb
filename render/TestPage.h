#pragma once

#include "render/CodePage.h"
#include "render/Output.h"

namespace quordalvane::render {

/// Prints the characters of a code page twice, 16 in a line: with the printer's own letters, and
/// drawn below them. Where the two lines differ, the printer lacks the page, or has another one
/// under its number. `width` in dots, a multiple of 8.
void printTestPage(CodePage page, unsigned width, const Output& output);

}  // namespace quordalvane::render
