#include "fuzz/ReplyPlace.h"
#include "parsers/ReplyParsers.h"

using namespace quordalvane;
using fuzz::require;

/// The input is a reply. Any settings that the parser finds must be between the head of the reply
/// and the last line feed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Bytes bytes(data, data + size);
  fuzz::requireSteady(parseDipSwitchInfo, bytes, {0x1b, '#', ',', '1', 0x01, 0x02, 0x0a});
  const auto place = fuzz::placeIn(parseDipSwitchInfo, bytes);
  if (!place) {
    return 0;
  }
  require(place->length >= 2);
  const auto settings = bytes.begin() + place->location;
  const auto end = settings + place->length;
  require(place->location >= 4 && settings[-4] == 0x1b && settings[-3] == '#');
  require(settings[-2] == ',' && (settings[-1] == '1' || settings[-1] == '2'));
  require(end < bytes.end() && *end == 0x0a &&
          std::find(end + 1, bytes.end(), 0x0a) == bytes.end());
  return 0;
}
