#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quordalvane::simulator {

/// An encoding of two and more bytes a character.
enum class MultiByte : std::uint8_t { None, ShiftJis, Gb18030, Big5, EucKr };

/// The characters that a printer has, and how a job selects them. A plain value.
class CharacterSets {
 public:
  /// The code-page numbers of most ESC/POS printers, and Japanese.
  CharacterSets();

  /// The page of the number that 1b 74 names; empty if the printer has none there.
  std::string_view page(std::uint8_t number) const { return pages_[number]; }

  /// Sets the numbers of the pages: `common`, `small`, or pairs NUMBER:NAME joined by blanks or
  /// `+`, like `0:437+16:1252`. Throws std::invalid_argument, with a text for people, on anything
  /// else, and changes nothing then.
  void setPages(std::string_view text);

  /// Sets the encoding of several bytes a character by its name: `none`, `shift-jis`, `gb18030`,
  /// `big5`, `euc-kr`. Errors likewise.
  void setMultiByte(std::string_view name);

  MultiByte multiByte = MultiByte::ShiftJis;
  bool utf8 = false;  ///< until a job selects a page, text that is valid UTF-8 is read as such

  bool operator==(const CharacterSets&) const = default;

 private:
  std::array<std::string_view, 256> pages_;
};

/// The name as `CharacterSets::setMultiByte` takes it.
std::string_view nameOf(MultiByte encoding);

}  // namespace quordalvane::simulator
