#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// An encoding in which a character can have two or more bytes.
enum class MultiByte : std::uint8_t { None, ShiftJis, Gb18030, Big5, EucKr };

/// The character sets that a printer has, and the numbers by which a job selects them. Objects can
/// be copied and compared.
class CharacterSets {
 public:
  /// Creates character sets with the code-page numbers that most ESC/POS printers share, and with
  /// the Japanese multi-byte encoding.
  CharacterSets();

  /// Returns the name of the code page that the command 1b 74 (hex) selects by this number; empty
  /// if the printer has no such page.
  std::string_view page(std::uint8_t number) const { return pages_[number]; }

  /// Sets the numbers of the code pages. `text` is `common`, `small`, or pairs NUMBER:NAME
  /// separated by blanks or `+`, like `0:437+16:1252`. Throws std::invalid_argument for any other
  /// text, with a message for people, and changes nothing.
  void setPages(std::string_view text);

  /// Returns the text that `setPages` received last.
  const std::string& pages() const { return pagesText_; }

  /// Sets the multi-byte encoding by its name: `none`, `shift-jis`, `gb18030`, `big5` or `euc-kr`.
  /// Throws as `setPages` does.
  void setMultiByte(std::string_view name);

  MultiByte multiByte = MultiByte::ShiftJis;
  bool utf8 = false;  ///< the printer reads valid UTF-8 until a job selects a code page

  bool operator==(const CharacterSets&) const = default;

 private:
  std::array<std::string_view, 256> pages_;
  std::string pagesText_ = "common";
};

/// Returns the name that `CharacterSets::setMultiByte` reads.
std::string_view nameOf(MultiByte encoding);

}  // namespace quordalvane::simulator
