#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// Turns the text bytes of a job into characters. Until the job selects a code page, an unbroken
/// run of bytes from 80 hex up is UTF-8 if all of it is valid UTF-8, and code page 437 otherwise: a
/// job's author rarely tells the printer which, and box drawing rarely happens to be valid UTF-8.
/// Once a code page is selected it is taken at its word.
class TextDecoder {
 public:
  /// Takes one byte and appends to `text` what is decided by now.
  void put(std::uint8_t byte, std::u32string& text);

  /// Decides what is still open. To be called before anything that is not text.
  void finish(std::u32string& text);

  /// Selects code page `number` of the command 1b 74: 0 is 437, 16 is 1252, 19 is 858. Any other
  /// number selects nothing and returns false.
  bool select(std::uint8_t number);

  /// The number of the page that is selected; 0 if none is.
  std::uint8_t page() const { return number_; }

  /// Back to the state in which the job has selected no code page.
  void reset();

 private:
  enum class Page { Undeclared, Cp437, Cp858, Cp1252 };

  char32_t fromPage(std::uint8_t byte) const;
  void flush(std::u32string& text, std::size_t count);

  Page page_ = Page::Undeclared;
  std::uint8_t number_ = 0;
  std::string run_;  // bytes from 80 hex up that are not decided yet
};

/// The text in UTF-8. A value that is not a character becomes the replacement character, U+FFFD.
std::string toUtf8(std::u32string_view text);

/// The characters of a text in UTF-8. Each byte that belongs to none is the replacement character.
std::u32string fromUtf8(std::string_view bytes);

}  // namespace quordalvane::simulator
