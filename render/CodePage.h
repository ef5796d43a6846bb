#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::render {

/// The characters that the printer can print as text: those of ASCII, and those of the code page
/// that the command 1b 74 N selects.
class CodePage {
 public:
  /// Creates a code page with only ASCII, which every printer can print.
  CodePage();

  /// `text` is a page number that most ESC/POS printers share, for example 16. For a printer with
  /// other numbers, `text` is NUMBER:NAME, for example 6:1251. A number is from 0 to 255. Throws
  /// RenderError if `text` has another form, if a number without a name is not a shared number, or
  /// if this system does not know the page.
  explicit CodePage(std::string_view text);
  ~CodePage();
  CodePage(CodePage&&) noexcept;
  CodePage& operator=(CodePage&&) noexcept;

  /// Returns the number of the page to select in the printer; null for ASCII alone, which needs no
  /// selection.
  std::optional<std::uint8_t> number() const { return number_; }

  /// Converts a line of UTF-8 to the printer's bytes, one for each character. Returns null if the
  /// printer lacks one of the characters, or if the line has Hebrew or Arabic letters, which the
  /// printer would print in the wrong order. A letter followed by combining accents counts as one
  /// accented letter.
  std::optional<std::vector<std::uint8_t>> encoded(const std::string& line) const;

  /// Returns, in UTF-8, the character of a byte from 80 to ff (hex); "" if the page has no
  /// character for it.
  std::string character(std::uint8_t byte) const;

 private:
  struct Converter;

  std::optional<std::uint8_t> number_;
  std::unique_ptr<Converter> converter_;
};

}  // namespace quordalvane::render
