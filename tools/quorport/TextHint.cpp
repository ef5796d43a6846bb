#include "tools/quorport/TextHint.h"

#include <string_view>

#include "text/Utf8.h"

namespace quordalvane::tool {
namespace {

bool isOfText(std::uint32_t codePoint) {
  const bool isControl = codePoint < 0x20 || (codePoint >= 0x7f && codePoint < 0xa0);
  return !isControl || codePoint == '\t' || codePoint == '\n' || codePoint == '\r';
}

// Returns true if the text is valid UTF-8, contains a character outside ASCII, and contains no
// printer commands.
bool isTextBeyondAscii(std::string_view text) {
  bool isBeyond = false;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    if (character.length == 0 || !isOfText(character.codePoint)) {
      return false;
    }
    isBeyond = isBeyond || character.length > 1;
    text.remove_prefix(character.length);
  }
  return isBeyond;
}

}  // namespace

void hintAtText(ByteView job, const Streams& streams) {
  if (isTextBeyondAscii({reinterpret_cast<const char*>(job.data()), job.size()})) {
    complain(
        "the file is text in UTF-8, and most printers print other characters for its bytes; "
        "--text prints the right ones",
        streams);
  }
}

}  // namespace quordalvane::tool
