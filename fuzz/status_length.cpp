#include <cstring>

#include "fuzz/FuzzTarget.h"
#include "parsers/StatusParsers.h"

using namespace quordalvane;
using fuzz::require;

/// The input is the first byte of a status reply, as a number of 32 bits. Even if the number is too
/// large for a byte or negative, the calculated length of the reply must fit a status record.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::int32_t firstByte = 0;
  std::memcpy(&firstByte, data, size < sizeof firstByte ? size : sizeof firstByte);
  const std::int32_t length = CalculateStatusLength(firstByte);
  require(length >= 1 && length <= 63);
  require(length == CalculateStatusLength(firstByte & 0xff));
  require(length == CalculateStatusLength(length));
  return 0;
}
