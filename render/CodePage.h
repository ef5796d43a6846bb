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

  /// `text` is the number of a page, from 0 to 255, as most ESC/POS printers number it, for example
  /// 16. For a printer that numbers its pages differently, `text` is NUMBER:NAME, for example
  /// 6:1251. Throws RenderError if `text` is anything else, if the number is not a usual one, or if
  /// this system does not know the page.
  explicit CodePage(std::string_view text);
  ~CodePage();
  CodePage(CodePage&&) noexcept;
  CodePage& operator=(CodePage&&) noexcept;

  /// Returns the number of the page to select in the printer; null for ASCII alone, which needs no
  /// selection.
  std::optional<std::uint8_t> number() const { return number_; }

  /// Converts a line of UTF-8 to the printer's bytes, one for each character. Returns null if the
  /// printer lacks one of the characters. A letter followed by combining accents counts as one
  /// accented letter.
  std::optional<std::vector<std::uint8_t>> encoded(const std::string& line) const;

  /// Returns, in UTF-8, the character of a byte from 80 to ff; "" if the page has no character for
  /// it.
  std::string character(std::uint8_t byte) const;

 private:
  struct Converter;

  std::optional<std::uint8_t> number_;
  std::unique_ptr<Converter> converter_;
};

}  // namespace quordalvane::render
