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

/// Turns UTF-8 text into the printer's commands. If all characters of a line are in the printer's
/// code page, the line is sent as text, which is fast and sharp; otherwise it is drawn and sent as
/// a picture. Only one line is kept in memory, so a text may have any length.
class TextPrinting {
 public:
  /// `width` is in dots and must be a multiple of 8.
  TextPrinting(unsigned width, CodePage codePage, Output output);

  /// Adds a piece of the text. Throws the exceptions of TextLines::add.
  void add(std::string_view piece) { lines_.add(piece); }

  /// Adds a line that is sent as a picture even if the printer has all its characters. The text
  /// passed to `add` so far must be empty or end with a line end.
  void addDrawn(const std::string& line);

  /// Sends the remaining text. Throws the exceptions of TextLines::end.
  void end();

  /// Returns the characters that have no glyph; see TextDrawing::missing.
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
