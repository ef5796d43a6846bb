#include "simulator/CommandRules.h"

#include <algorithm>
#include <array>

namespace quordalvane::simulator::rules {
namespace {

std::uint64_t word(ByteView bytes, std::size_t at) {
  return static_cast<std::uint64_t>(bytes[at]) | static_cast<std::uint64_t>(bytes[at + 1]) << 8U;
}

// If the terminator is missing, the limit `most` ends the command. Without this limit, the command
// would include all remaining bytes of the job.
std::uint64_t untilNul(ByteView bytes, std::size_t from, std::size_t most) {
  const bool ended = bytes.size() > from && bytes.back() == 0;
  return ended || bytes.size() >= from + most ? bytes.size() : bytes.size() + 1;
}

// The command consists of the bytes 1d 43 3b and five numbers. Each number consists of decimal
// digits and is followed by the byte 3b. A byte that is neither a digit nor 3b ends the command.
std::uint64_t counterInDigits(ByteView bytes) {
  constexpr std::size_t mostDigits = std::size_t{5} * 5;
  const auto numbers = bytes.subspan(3);
  const auto separators = std::count(numbers.begin(), numbers.end(), ';');
  const bool goesOn =
      numbers.empty() || numbers.back() == ';' || (numbers.back() >= '0' && numbers.back() <= '9');
  const bool isOver = separators == 5 || !goesOn || numbers.size() >= mostDigits + 5;
  return isOver ? bytes.size() : bytes.size() + 1;
}

}  // namespace

std::uint64_t tabStops(ByteView bytes) {
  return untilNul(bytes, 2, 33);
}

std::uint64_t countedByWord(ByteView bytes) {
  return 5 + word(bytes, 3);
}

std::uint64_t countedByDoubleWord(ByteView bytes) {
  return 7 + word(bytes, 3) + (word(bytes, 5) << 16U);
}

std::uint64_t bitImage(ByteView bytes) {
  const std::uint8_t mode = bytes[2];
  const bool legal = mode <= 1 || mode == 32 || mode == 33;
  if (!legal) {
    return 3;
  }
  if (bytes.size() < 5) {
    return 5;
  }
  return 5 + word(bytes, 3) * (mode >= 32 ? 3 : 1);
}

std::uint64_t raster(ByteView bytes) {
  return 8 + word(bytes, 4) * word(bytes, 6);
}

std::uint64_t downloadedImage(ByteView bytes) {
  return 4 + std::uint64_t{8} * bytes[2] * bytes[3];
}

std::uint64_t barcode(ByteView bytes) {
  const std::uint8_t symbology = bytes[2];
  if (symbology <= 6) {
    return untilNul(bytes, 3, 256);
  }
  if (symbology < 65 || symbology > 79) {
    return 3;
  }
  return bytes.size() < 4 ? 4 : std::uint64_t{4} + bytes[3];
}

std::uint64_t cut(ByteView bytes) {
  constexpr std::array<std::uint8_t, 6> withFeed = {65, 66, 97, 98, 103, 104};
  return std::find(withFeed.begin(), withFeed.end(), bytes[2]) != withFeed.end() ? 4 : 3;
}

std::uint64_t realTimeStatus(ByteView bytes) {
  return bytes[2] == 7 || bytes[2] == 8 || bytes[2] == 18 ? 4 : 3;
}

std::uint64_t realTimeAction(ByteView bytes) {
  switch (bytes[2]) {
    case 1:
    case 2:
      return 5;
    case 3:
      return 8;
    case 7:
      return 4;
    case 8:
      return 10;
    default:
      return 3;
  }
}

std::uint64_t counter(ByteView bytes) {
  switch (bytes[2]) {
    case '0':
    case '2':
      return 5;
    case '1':
      return 9;
    case ';':
      return counterInDigits(bytes);
    default:
      return 3;
  }
}

std::uint64_t bitmapFile(ByteView bytes) {
  const bool isBitmap = bytes[9] == 'B' && bytes[10] == 'M';
  return isBitmap ? std::max<std::uint64_t>(15, 9 + (word(bytes, 11) | word(bytes, 13) << 16U))
                  : 15;
}

std::uint64_t cheque(ByteView bytes) {
  return bytes[2] == '0' ? 4 : 3;
}

std::uint64_t countedSymbol(ByteView bytes) {
  return 7 + word(bytes, 5);
}

std::uint64_t userMemory(ByteView bytes) {
  return bytes[2] == '1' ? 10 + word(bytes, 8) : 10;
}

std::uint64_t userCharacters(ByteView bytes) {
  const std::size_t rows = bytes[2];
  const int count = bytes[4] - bytes[3] + 1;
  std::size_t length = 5;
  for (int i = 0; i < count; ++i) {
    if (bytes.size() <= length) {
      return length + 1;
    }
    length += 1 + rows * bytes[length];
  }
  return length;
}

std::uint64_t storedImages(ByteView bytes) {
  std::uint64_t length = 3;
  for (int i = 0; i < bytes[2]; ++i) {
    if (bytes.size() < length + 4) {
      return length + 4;
    }
    length += 4 + 8 * word(bytes, length) * word(bytes, length + 2);
  }
  return length;
}

std::uint64_t dividedCurves(ByteView bytes) {
  return 3 + std::uint64_t{4} * bytes[2];
}

std::uint64_t rowsOfDots(ByteView bytes) {
  constexpr unsigned bytesARow = 48;
  return 4 + word(bytes, 2) * bytesARow;
}

std::uint64_t countedRows(ByteView bytes) {
  return 4 + std::uint64_t{bytes[2]} * bytes[3];
}

std::uint64_t displayWindow(ByteView bytes) {
  const bool defines = bytes[3] == 1 || bytes[3] == '1';
  return defines ? 8 : 4;
}

}  // namespace quordalvane::simulator::rules
