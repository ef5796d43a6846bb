#include "render/TextLines.h"

#include <glib.h>

#include <utility>

#include "render/RenderError.h"
#include "text/Utf8.h"

namespace quordalvane::render {
namespace {

constexpr std::uint32_t byteOrderMark = 0xfeff;
constexpr std::size_t longestCharacter = 4;
constexpr std::size_t tabWidth = 8;

bool isControl(std::uint32_t codePoint) {
  return codePoint < 0x20 || (codePoint >= 0x7f && codePoint < 0xa0);
}

std::string place(std::uint64_t offset) {
  return " at byte " + std::to_string(offset) + " of the text";
}

// Returns true for a mark that belongs to the preceding character; a line must not be broken
// between the two.
bool belongsToTheOneBefore(std::uint32_t codePoint) {
  return g_unichar_iszerowidth(codePoint) != 0 || g_unichar_ismark(codePoint) != 0;
}

}  // namespace

TextLines::TextLines(Take take) : take_(std::move(take)) {}

void TextLines::add(std::string_view piece) {
  unread_ += piece;
  std::string_view left = unread_;
  while (!left.empty()) {
    const Character character = firstCharacter(left);
    if (character.length == 0) {
      if (left.size() < longestCharacter) {
        break;
      }
      throw RenderError("invalid UTF-8" + place(offset_));
    }
    addCharacter(character.codePoint, left.substr(0, character.length));
    offset_ += character.length;
    left.remove_prefix(character.length);
  }
  unread_.erase(0, unread_.size() - left.size());
}

void TextLines::end() {
  if (!unread_.empty()) {
    throw RenderError("invalid UTF-8" + place(offset_));
  }
  if (!line_.empty()) {
    endLine();
  }
}

void TextLines::addCharacter(std::uint32_t codePoint, std::string_view character) {
  if (std::exchange(afterReturn_, codePoint == '\r') && codePoint != '\n') {
    throw RenderError("a carriage return without a line feed" + place(offset_ - 1));
  }
  if (codePoint == '\n' || codePoint == '\f') {
    endLine();
  } else if (codePoint == '\t') {
    do {
      addLetter(' ', " ");
    } while (column_ % tabWidth != 0);
  } else if (codePoint != '\r' && isControl(codePoint)) {
    throw RenderError("a control character" + place(offset_) +
                      " would be a command to the printer; do not print a file with printer "
                      "commands as text");
  } else if (codePoint != '\r' && !(codePoint == byteOrderMark && offset_ == 0)) {
    addLetter(codePoint, character);
  }
}

void TextLines::addLetter(std::uint32_t codePoint, std::string_view character) {
  const bool isFull = line_.size() + character.size() > longestLine;
  if (isFull && (!belongsToTheOneBefore(codePoint) || line_.size() > 2 * longestLine)) {
    breakLine();
  }
  line_ += character;
  if (!belongsToTheOneBefore(codePoint)) {
    ++column_;
  }
}

void TextLines::endLine() {
  take_(line_);
  line_.clear();
  column_ = 0;
}

void TextLines::breakLine() {
  const std::size_t blank = line_.rfind(' ');
  std::string rest;
  if (blank != std::string::npos && blank > longestLine / 2) {
    rest = line_.substr(blank + 1);
    line_.resize(blank);
  }
  endLine();
  line_ = std::move(rest);
}

}  // namespace quordalvane::render
