#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "simulator/Bytes.h"
#include "simulator/CharacterSets.h"
#include "simulator/CodePages.h"
#include "simulator/MultiByteText.h"

namespace quordalvane::simulator {

/// Characters that a part of the text bytes has turned out to be.
struct DecodedText {
  std::u32string characters;
  bool isWide = false;  ///< each takes the room of two letters
  Bytes missing;        ///< bytes that have no character, if there are any
};

/// Turns the text bytes of a job into characters, as the commands of the job select them among the
/// characters that the printer has.
///
/// Of a printer that knows UTF-8, an unbroken run of bytes from 80 hex up is UTF-8 if all of it is
/// valid UTF-8, until the job selects a code page. Every other byte is of the page that is
/// selected, which is number 0 at first.
class TextDecoder {
 public:
  TextDecoder() { reset(); }

  /// From now on the printer has these. The job's selection does not change.
  void setCharacterSets(const CharacterSets& sets);

  /// Takes one byte from 20 hex up, and returns the characters that are decided by now.
  DecodedText put(std::uint8_t byte);

  /// Decides the rest. To be called before anything that is not text.
  DecodedText finish();

  /// Selects the page of the command 1b 74. Of a number that the printer has no page for it selects
  /// nothing and returns false.
  bool selectPage(std::uint8_t number);

  /// Selects the international set of the command 1b 52; false if there is none.
  bool selectNationalSet(std::uint8_t number);

  /// Turns characters of several bytes on or off; false if the printer has none.
  bool setMultiByte(bool on);

  /// Turns them on and selects their code of the command 1c 43: 0 is of seven bits, 1 is the
  /// printer's own. False if the printer has none.
  bool selectMultiByteCode(std::uint8_t number);

  /// Reads UTF-8 again, or the selected page, by the command 1c 28 43; false if the printer knows
  /// no UTF-8.
  bool setUtf8(bool on);

  /// For people: the number of the page, or the name of the encoding of several bytes.
  std::string selection() const;

  /// Back to the state in which the job has selected nothing.
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
  std::shared_ptr<MultiByteText> multiByte_;  // null while they are off
  std::string run_;                           // bytes that are not decided yet
};

/// True if a character always takes the room of two letters.
bool isWide(char32_t character);

}  // namespace quordalvane::simulator
