#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "render/Output.h"

namespace quordalvane::render {

/// Draws text in any script. The drawn letters are as wide as the printer's own letters, so the
/// columns of drawn lines and of lines sent as text are aligned.
class TextDrawing {
 public:
  /// `width` is in dots and must be a multiple of 8.
  explicit TextDrawing(unsigned width);
  ~TextDrawing();
  TextDrawing(const TextDrawing&) = delete;
  TextDrawing& operator=(const TextDrawing&) = delete;

  /// Draws a line of UTF-8, wrapped at the width, and passes its rows of dots to `takeRow`, from
  /// the top down. A line whose first letter belongs to a right-to-left script begins at the right.
  /// Only a band of 255 rows is kept in memory.
  void draw(const std::string& line, const Output& takeRow);

  /// Returns the characters for which no font on this machine has a glyph, at most a hundred. On
  /// the paper each of these characters is a box with its number.
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
