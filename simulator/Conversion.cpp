#include "simulator/Conversion.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace quordalvane::simulator {
namespace {

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0);
}

}  // namespace

Conversion::Conversion(const char* encoding) {
  // The converter writes UTF-32 in the byte order of this machine, without a byte order mark.
  const std::uint16_t one = 1;
  const bool isLittle = *reinterpret_cast<const std::uint8_t*>(&one) == 1;
  iconv_t converter = ::iconv_open(isLittle ? "UTF-32LE" : "UTF-32BE", encoding);
  if (converter != reinterpret_cast<iconv_t>(-1)) {
    converter_.reset(converter);
  }
}

void Conversion::Closer::operator()(void* converter) const {
  ::iconv_close(converter);
}

char32_t Conversion::characterOf(ByteView bytes) {
  if (converter_ == nullptr) {
    return noCharacter;
  }
  std::array<char, 8> given{};
  std::copy_n(bytes.begin(), std::min(bytes.size(), given.size()), given.begin());
  char* in = given.data();
  std::size_t unread = std::min(bytes.size(), given.size());
  std::array<char32_t, 2> characters{};
  char* out = reinterpret_cast<char*>(characters.data());
  std::size_t room = sizeof characters;
  constexpr auto failed = static_cast<std::size_t>(-1);
  // In some encodings an accent may follow a letter, so the converter holds the letter back. The
  // second call fetches this letter.
  const bool isWhole = ::iconv(converter_.get(), &in, &unread, &out, &room) != failed &&
                       ::iconv(converter_.get(), nullptr, nullptr, &out, &room) != failed;
  ::iconv(converter_.get(), nullptr, nullptr, nullptr, nullptr);
  const bool isOne = isWhole && unread == 0 && room == sizeof(char32_t);
  return isOne && !isControl(characters[0]) ? characters[0] : noCharacter;
}

}  // namespace quordalvane::simulator
