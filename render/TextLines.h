#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quordalvane::render {

/// The maximum number of bytes of a line. A longer line is broken, if possible at a blank, so that
/// an endless line needs no more memory than this.
inline constexpr std::size_t longestLine = 4096;

/// Splits UTF-8 text into lines that can be printed.
class TextLines {
 public:
  /// Receives a line without its line end. Each tab was replaced by blanks up to the next multiple
  /// of eight columns.
  using Take = std::function<void(const std::string& line)>;

  explicit TextLines(Take take);

  /// Adds a piece of the text; the piece may end inside a character. A line ends with LF, CR LF or
  /// a form feed. A byte order mark at the beginning is left out. Throws RenderError for bytes that
  /// are not UTF-8, and for any other control character, because the printer would take it for a
  /// command.
  void add(std::string_view piece);

  /// Passes on the last line if it has no line end. Throws RenderError if the text ends inside a
  /// character.
  void end();

 private:
  void addCharacter(std::uint32_t codePoint, std::string_view character);
  void addLetter(std::uint32_t codePoint, std::string_view character);
  void endLine();
  void breakLine();

  Take take_;
  std::string unread_;  // an incomplete character at the end of the last piece
  std::string line_;
  std::size_t column_ = 0;    // position in the line, in characters
  std::uint64_t offset_ = 0;  // position of the next character in the text, in bytes
  bool afterReturn_ = false;
};

}  // namespace quordalvane::render
