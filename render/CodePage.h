#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::render {

/// The characters that the printer prints as text: those of ASCII, and those of the code page that
/// the command 1b 74 N selects.
class CodePage {
 public:
  /// ASCII alone, which every printer has.
  CodePage();

  /// `text` is a number from 0 to 255 as most ESC/POS printers count their pages, such as 16; or
  /// NUMBER:NAME for a printer that counts in another way, such as 6:1251. Throws RenderError for
  /// another text, a number without a usual meaning, and a page that this system does not know.
  explicit CodePage(std::string_view text);
  ~CodePage();
  CodePage(CodePage&&) noexcept;
  CodePage& operator=(CodePage&&) noexcept;

  /// Null for ASCII alone: nothing is to be selected.
  std::optional<std::uint8_t> number() const { return number_; }

  /// The bytes of a line in UTF-8, one for each character; null if it has a character that the
  /// printer lacks. Letters with combining accents are taken as the letters that they make.
  std::optional<std::vector<std::uint8_t>> encoded(const std::string& line) const;

  /// The character of a byte from 80 to ff, in UTF-8; "" if the page has none there.
  std::string character(std::uint8_t byte) const;

 private:
  struct Converter;

  std::optional<std::uint8_t> number_;
  std::unique_ptr<Converter> converter_;
};

}  // namespace quordalvane::render
