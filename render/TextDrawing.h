#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "render/Output.h"

namespace quordalvane::render {

/// Draws text of any script. Its letters are as wide as those of the printer, so that columns of
/// drawn lines and of lines of text agree.
class TextDrawing {
 public:
  /// `width` in dots, a multiple of 8.
  explicit TextDrawing(unsigned width);
  ~TextDrawing();
  TextDrawing(const TextDrawing&) = delete;
  TextDrawing& operator=(const TextDrawing&) = delete;

  /// Draws a line in UTF-8, wrapped at the width, and hands its rows of dots to `takeRow`, from the
  /// top. A line whose first letter is of a script from right to left begins at the right. It
  /// holds a band of 255 rows.
  void draw(const std::string& line, const Output& takeRow);

  /// The characters for which no font of this machine has a glyph, up to a hundred. The paper shows
  /// a box with its number for each.
  const std::set<char32_t>& missing() const { return missing_; }

 private:
  struct Pango;

  void noteMissing();
  void drawBand(int top, int rows, const Output& takeRow);

  unsigned width_;
  std::set<char32_t> missing_;
  std::unique_ptr<Pango> pango_;
};

}  // namespace quordalvane::render
