#include "fuzz/ReplyPlace.h"
#include "parsers/ReplyParsers.h"

using namespace quordalvane;
using fuzz::require;

/// The input is a sequence of replies. The parser must find the first complete text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Bytes bytes(data, data + size);
  fuzz::requireSteady(parseFirmwareInfo, bytes, {0x1b, '#', '*', 'A', 0x0a, 0x00});
  const auto place = fuzz::placeIn(parseFirmwareInfo, bytes);
  if (!place) {
    return 0;
  }
  require(place->length >= 1 && place->length <= 64);
  const auto text = bytes.begin() + place->location;
  const auto end = text + place->length;
  require(std::all_of(text, end, [](auto byte) { return byte >= ' ' && byte <= '~'; }));
  require(place->location >= 3 && text[-3] == 0x1b && text[-2] == '#' && text[-1] == '*');
  require(bytes.end() - end >= 2 && end[0] == 0x0a && end[1] == 0x00);
  require(!fuzz::placeIn(parseFirmwareInfo, fuzz::Bytes(bytes.begin(), end + 1)));
  return 0;
}
