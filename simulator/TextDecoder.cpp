#include "simulator/TextDecoder.h"

#include <algorithm>
#include <utility>

#include "simulator/NationalSets.h"
#include "simulator/Utf8.h"

namespace quordalvane::simulator {
namespace {

// A run is a sequence of bytes that are all 80 (hex) or greater. The decoder keeps the bytes of a
// run until the run ends, or until it has kept this many bytes. It then converts the kept bytes, so
// that a long run needs no more memory.
constexpr std::size_t longestRun = 256;

constexpr char32_t house = 0x2302;  // the sign that printers' own fonts have for byte 7f

Bytes bytesOf(const std::string& run) {
  return {run.begin(), run.end()};
}

}  // namespace

void TextDecoder::setCharacterSets(const CharacterSets& sets) {
  if (sets == sets_) {
    return;
  }
  sets_ = sets;
  reset();
}

void TextDecoder::reset() {
  run_.clear();
  guessesUtf8_ = sets_.utf8;
  nationalSet_ = 0;
  page_ = &upperHalfOf("437");
  number_ = 0;
  if (const auto first = sets_.page(0); !first.empty()) {
    page_ = &upperHalfOf(first);
  }
  multiByte_.reset();
  // Japanese printers read multi-byte characters only after a command. Printers for other languages
  // always read them.
  if (sets_.multiByte != MultiByte::ShiftJis) {
    setMultiByte(true);
  }
}

DecodedText TextDecoder::put(std::uint8_t byte) {
  if (multiByte_ != nullptr && (!run_.empty() || multiByte_->begins(byte))) {
    return putMultiByte(byte);
  }
  if (byte >= 0x80 && guessesUtf8_ && multiByte_ == nullptr) {
    run_ += static_cast<char>(byte);
    return run_.size() < longestRun ? DecodedText() : decide(wholeCharactersIn(run_));
  }
  DecodedText text = finish();
  const char32_t character = single(byte);
  text.characters += character;
  if (character == noCharacter) {
    text.missing.push_back(byte);
  }
  return text;
}

char32_t TextDecoder::single(std::uint8_t byte) const {
  if (byte >= 0x80) {
    return (*page_)[byte - 0x80U];
  }
  return byte == 0x7f ? house : nationalCharacter(nationalSet_, byte);
}

DecodedText TextDecoder::putMultiByte(std::uint8_t byte) {
  run_ += static_cast<char>(byte);
  const Bytes bytes = bytesOf(run_);
  const std::size_t length = multiByte_->lengthOf(bytes);
  if (length > bytes.size()) {
    return {};
  }
  if (length == 0) {  // these bytes form no character, but the last byte may begin one
    run_.pop_back();
    DecodedText text = finish();
    const DecodedText next = put(byte);
    text.characters += next.characters;
    text.missing.insert(text.missing.end(), next.missing.begin(), next.missing.end());
    return text;
  }
  run_.clear();
  const char32_t character = multiByte_->characterOf(bytes);
  return {{character}, true, character == noCharacter ? bytes : Bytes()};
}

DecodedText TextDecoder::finish() {
  return run_.empty() ? DecodedText() : decide(run_.size());
}

DecodedText TextDecoder::decide(std::size_t count) {
  const std::string run = run_.substr(0, count);
  run_.erase(0, count);
  if (multiByte_ != nullptr) {
    return {{noCharacter}, false, bytesOf(run)};
  }
  if (auto unicode = wholeUtf8(run)) {
    return {*std::move(unicode), false, {}};
  }
  DecodedText text;
  for (const std::uint8_t byte : bytesOf(run)) {
    text.characters += single(byte);
    if (text.characters.back() == noCharacter) {
      text.missing.push_back(byte);
    }
  }
  return text;
}

bool TextDecoder::selectPage(std::uint8_t number) {
  const std::string_view page = sets_.page(number);
  if (page.empty()) {
    return false;
  }
  page_ = &upperHalfOf(page);
  number_ = number;
  guessesUtf8_ = false;
  return true;
}

bool TextDecoder::selectNationalSet(std::uint8_t number) {
  if (!isNationalSet(number)) {
    return false;
  }
  nationalSet_ = number;
  return true;
}

void TextDecoder::startMultiByte(bool sevenBit) {
  multiByte_ = std::make_shared<MultiByteText>(sets_.multiByte, sevenBit);
}

bool TextDecoder::setMultiByte(bool on) {
  if (sets_.multiByte == MultiByte::None) {
    return false;
  }
  if (!on) {
    multiByte_.reset();
  } else if (multiByte_ == nullptr) {
    startMultiByte(true);
  }
  return true;
}

bool TextDecoder::selectMultiByteCode(std::uint8_t number) {
  if (sets_.multiByte == MultiByte::None) {
    return false;
  }
  startMultiByte(number == 0 || number == '0');
  return true;
}

bool TextDecoder::setUtf8(bool on) {
  if (!sets_.utf8) {
    return false;
  }
  guessesUtf8_ = on;
  return true;
}

std::string TextDecoder::selection() const {
  return multiByte_ != nullptr ? std::string(nameOf(sets_.multiByte))
                               : "page " + std::to_string(number_);
}

bool isWide(char32_t character) {
  constexpr std::pair<char32_t, char32_t> ranges[] = {
      {0x1100, 0x115f}, {0x2e80, 0x303e}, {0x3041, 0xa4cf}, {0xac00, 0xd7a3},   {0xf900, 0xfaff},
      {0xfe30, 0xfe6f}, {0xff01, 0xff60}, {0xffe0, 0xffe6}, {0x1f300, 0x1faff}, {0x20000, 0x3fffd},
  };
  return character >= ranges[0].first &&
         std::any_of(std::begin(ranges), std::end(ranges), [&](const auto& range) {
           return character >= range.first && character <= range.second;
         });
}

}  // namespace quordalvane::simulator
