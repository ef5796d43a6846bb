#pragma once

#include <set>
#include <string>
#include <string_view>

#include "render/CodePage.h"
#include "render/Output.h"
#include "render/RasterBands.h"
#include "render/TextDrawing.h"
#include "render/TextLines.h"

namespace quordalvane::render {

/// Turns UTF-8 text into the printer's commands. A line whose characters are all in the printer's
/// code page is sent as text, which is fast and sharp; any other line is drawn. It holds one line,
/// whatever the length of the text.
class TextPrinting {
 public:
  /// `width` in dots, a multiple of 8.
  TextPrinting(unsigned width, CodePage codePage, Output output);

  /// Adds a piece of the text. Throws as TextLines::add does.
  void add(std::string_view piece) { lines_.add(piece); }

  /// Adds a line that is drawn whatever its characters are. It follows what was added before, which
  /// must have ended with the end of a line.
  void addDrawn(const std::string& line);

  /// Hands on the rest. Throws as TextLines::end does.
  void end();

  /// The characters without a glyph, see TextDrawing::missing.
  const std::set<char32_t>& missing() const { return drawing_.missing(); }

 private:
  void print(const std::string& line);
  void printText(ByteView letters);
  void selectCodePage();

  std::size_t columns_;
  CodePage codePage_;
  Output output_;
  bool isPageSelected_ = false;
  bool isDrawing_ = false;
  TextDrawing drawing_;
  RasterBands bands_;
  TextLines lines_;
};

}  // namespace quordalvane::render
