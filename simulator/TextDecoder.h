#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "simulator/Bytes.h"
#include "simulator/CharacterSets.h"
#include "simulator/CodePages.h"
#include "simulator/MultiByteText.h"

namespace quordalvane::simulator {

/// The characters that text bytes were converted to.
struct DecodedText {
  std::u32string characters;
  bool isWide = false;  ///< each character is as wide as two letters
  Bytes missing;        ///< bytes that have no character; may be empty
};

/// Converts the text bytes of a job to characters. The job's commands select one of the character
/// sets of the printer.
///
/// A printer that knows UTF-8 uses it until the job selects a code page or turns UTF-8 off. During
/// this time, successive bytes that are all 80 (hex) or greater are UTF-8 if together they are
/// valid UTF-8. All other bytes belong to the selected code page; initially that is page 0.
class TextDecoder {
 public:
  TextDecoder() { reset(); }

  /// Sets the printer's character sets. The job's selection does not change.
  void setCharacterSets(const CharacterSets& sets);

  /// Adds a text byte, at least 20 (hex). Returns the characters that are complete after this byte;
  /// later bytes cannot change them.
  DecodedText put(std::uint8_t byte);

  /// Returns the remaining characters. The caller must call this function before it handles a byte
  /// that is not text.
  DecodedText finish();

  /// Executes the command 1b 74: selects a code page. Returns false, and changes nothing, if the
  /// printer has no page of this number.
  bool selectPage(std::uint8_t number);

  /// Executes the command 1b 52: selects an international character set. Returns false if no set
  /// has this number.
  bool selectNationalSet(std::uint8_t number);

  /// Turns multi-byte characters on or off. Returns false if the printer has no such characters.
  bool setMultiByte(bool on);

  /// Executes the command 1c 43: turns multi-byte characters on and selects their code; 0 is the
  /// seven-bit code, 1 the printer's own. Returns false if the printer has no multi-byte
  /// characters.
  bool selectMultiByteCode(std::uint8_t number);

  /// Executes the command 1c 28 43: turns UTF-8 on or off. While UTF-8 is off, the selected code
  /// page applies. Returns false if the printer does not know UTF-8.
  bool setUtf8(bool on);

  /// Returns the current selection as a text for people: "page " and the number of the code page,
  /// or the name of the multi-byte encoding.
  std::string selection() const;

  /// Resets everything that the job has selected.
  void reset();

 private:
  char32_t single(std::uint8_t byte) const;
  DecodedText decide(std::size_t count);
  DecodedText putMultiByte(std::uint8_t byte);
  void startMultiByte(bool sevenBit);

  CharacterSets sets_;
  const UpperHalf* page_ = nullptr;
  std::uint8_t number_ = 0;
  std::uint8_t nationalSet_ = 0;
  bool guessesUtf8_ = false;
  std::shared_ptr<MultiByteText> multiByte_;  // null while multi-byte text is off
  std::string run_;                           // bytes that are not converted yet
};

/// Returns true if the character is always as wide as two letters.
bool isWide(char32_t character);

}  // namespace quordalvane::simulator
