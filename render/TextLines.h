#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quordalvane::render {

/// The most bytes of a line; a longer one is broken, at a blank if there is one. A text without an
/// end thus takes no more memory than this.
inline constexpr std::size_t longestLine = 4096;

/// Divides UTF-8 into lines that can be printed.
class TextLines {
 public:
  /// Takes a line without its end. Its tabulators are blanks, up to the next column of eight.
  using Take = std::function<void(const std::string& line)>;

  explicit TextLines(Take take);

  /// Adds a piece of the text, which may end within a character. Lines end with LF, CR LF or a form
  /// feed. Throws RenderError for bytes that are not UTF-8, and for a control character: it would
  /// be a command to the printer. A byte order mark at the beginning is left out.
  void add(std::string_view piece);

  /// Hands on the last line if it has no end. Throws RenderError if it ends within a character.
  void end();

 private:
  void addCharacter(std::uint32_t codePoint, std::string_view character);
  void addLetter(std::uint32_t codePoint, std::string_view character);
  void endLine();
  void breakLine();

  Take take_;
  std::string unread_;  // the beginning of a character
  std::string line_;
  std::size_t column_ = 0;    // in the line, in characters
  std::uint64_t offset_ = 0;  // of the next character in the text, in bytes
  bool afterReturn_ = false;
};

}  // namespace quordalvane::render
