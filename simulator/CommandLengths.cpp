#include "simulator/CommandLengths.h"

#include <algorithm>
#include <array>

namespace quordalvane::simulator {
namespace {

using LengthRule = std::uint64_t (*)(ByteView);

std::uint64_t word(ByteView bytes, std::size_t at) {
  return static_cast<std::uint64_t>(bytes[at]) | static_cast<std::uint64_t>(bytes[at + 1]) << 8U;
}

// A missing terminator must not swallow the rest of the job.
std::uint64_t untilNul(ByteView bytes, std::size_t from, std::size_t most) {
  const bool ended = bytes.size() > from && bytes.back() == 0;
  return ended || bytes.size() >= from + most ? bytes.size() : bytes.size() + 1;
}

std::uint64_t tabStops(ByteView bytes) {
  return untilNul(bytes, 2, 33);
}

// Two bytes after the selector hold the length: 1d 28 4c pL pH ...
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

// The queries for ink and for the other devices have one more parameter.
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

// 1d 43 3b sa 3b sb 3b sn 3b sr 3b sc 3b: numbers in digits. Any other byte ends it.
std::uint64_t counterInDigits(ByteView bytes) {
  constexpr std::size_t mostDigits = std::size_t{5} * 5;
  const auto numbers = bytes.subspan(3);
  const auto separators = std::count(numbers.begin(), numbers.end(), ';');
  const bool goesOn =
      numbers.empty() || numbers.back() == ';' || (numbers.back() >= '0' && numbers.back() <= '9');
  const bool isOver = separators == 5 || !goesOn || numbers.size() >= mostDigits + 5;
  return isOver ? bytes.size() : bytes.size() + 1;
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

// 1d 44 m fn a kc1 kc2 b c, then a bitmap file that says its own size.
std::uint64_t bitmapFile(ByteView bytes) {
  const bool isBitmap = bytes[9] == 'B' && bytes[10] == 'M';
  return isBitmap ? std::max<std::uint64_t>(15, 9 + (word(bytes, 11) | word(bytes, 13) << 16U))
                  : 15;
}

std::uint64_t cheque(ByteView bytes) {
  return bytes[2] == '0' ? 4 : 3;
}

// 1b 5a: version, correction and size, then the count of the data.
std::uint64_t countedSymbol(ByteView bytes) {
  return 7 + word(bytes, 5);
}

std::uint64_t userMemory(ByteView bytes) {
  return bytes[2] == '1' ? 10 + word(bytes, 8) : 10;
}

// 1b 26 y c1 c2, then for each character its width x and y times x bytes.
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

// 1c 71 n, then n images: their size xL xH yL yH in units of eight dots, and the dots.
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

struct Form {
  std::uint8_t prefixLength;
  std::array<std::uint8_t, 3> prefix;
  std::uint8_t header;  // so many bytes must be there before the rule can be asked
  LengthRule rule;      // null: the header is the whole command
  KnownWith knownWith = KnownWith::Always;
};

constexpr Form two(std::uint8_t lead, std::uint8_t selector, std::uint8_t header,
                   LengthRule rule = nullptr) {
  return {2, {lead, selector, 0}, header, rule};
}

constexpr Form three(std::uint8_t lead, std::uint8_t selector, std::uint8_t third,
                     std::uint8_t header, LengthRule rule = nullptr) {
  return {3, {lead, selector, third}, header, rule};
}

constexpr Form only(KnownWith with, Form form) {
  form.knownWith = with;
  return form;
}

// Longer prefixes precede the shorter ones that they refine.
constexpr Form commandForms[] = {
    only(KnownWith::Block, three(0x1b, 0x1d, 0x03, 6)),
    only(KnownWith::LineMode, three(0x1b, 0x23, 0x2a, 5)),
    only(KnownWith::LineMode, three(0x1b, 0x23, 0x2c, 6)),
    only(KnownWith::LineMode, three(0x1b, 0x2a, 0x72, 4)),
    three(0x1d, 0x76, 0x30, 8, raster),
    two(0x1d, 0x51, 8, raster),

    two(0x10, 0x04, 3, realTimeStatus),
    two(0x10, 0x05, 3),
    two(0x10, 0x14, 3, realTimeAction),

    only(KnownWith::LineMode, two(0x1b, 0x06, 3)),
    only(KnownWith::Block, two(0x1b, 0x1d, 4)),
    only(KnownWith::LineMode, two(0x1b, 0x1e, 4)),
    two(0x1b, 0x20, 3),
    two(0x1b, 0x21, 3),
    only(KnownWith::LineMode, two(0x1b, 0x23, 3)),
    two(0x1b, 0x24, 4),
    two(0x1b, 0x25, 3),
    two(0x1b, 0x26, 5, userCharacters),
    two(0x1b, 0x28, 5, countedByWord),
    two(0x1b, 0x2a, 3, bitImage),
    two(0x1b, 0x2d, 3),
    two(0x1b, 0x33, 3),
    two(0x1b, 0x3d, 3),
    two(0x1b, 0x3f, 3),
    two(0x1b, 0x42, 4),
    two(0x1b, 0x44, 2, tabStops),
    two(0x1b, 0x45, 3),
    two(0x1b, 0x47, 3),
    two(0x1b, 0x4a, 3),
    two(0x1b, 0x4b, 3),
    two(0x1b, 0x4d, 3),
    two(0x1b, 0x4f, 3),
    two(0x1b, 0x51, 3),
    two(0x1b, 0x52, 3),
    two(0x1b, 0x54, 3),
    two(0x1b, 0x55, 3),
    two(0x1b, 0x56, 3),
    two(0x1b, 0x57, 10),
    two(0x1b, 0x5a, 7, countedSymbol),
    two(0x1b, 0x5c, 4),
    two(0x1b, 0x61, 3),
    two(0x1b, 0x63, 4),
    two(0x1b, 0x64, 3),
    two(0x1b, 0x65, 3),
    two(0x1b, 0x66, 4),
    two(0x1b, 0x6c, 3),
    two(0x1b, 0x70, 5),
    two(0x1b, 0x72, 3),
    two(0x1b, 0x74, 3),
    two(0x1b, 0x75, 3),
    two(0x1b, 0x76, 2),
    two(0x1b, 0x7b, 3),

    two(0x1c, 0x21, 3),
    two(0x1c, 0x28, 5, countedByWord),
    two(0x1c, 0x2d, 3),
    two(0x1c, 0x32, 76),
    two(0x1c, 0x3f, 4),
    two(0x1c, 0x43, 3),
    two(0x1c, 0x53, 4),
    two(0x1c, 0x57, 3),
    two(0x1c, 0x61, 3, cheque),
    two(0x1c, 0x67, 10, userMemory),
    two(0x1c, 0x70, 4),
    two(0x1c, 0x71, 3, storedImages),
    two(0x1c, 0x7d, 4),

    two(0x1d, 0x21, 3),
    two(0x1d, 0x24, 4),
    two(0x1d, 0x28, 5, countedByWord),
    two(0x1d, 0x2a, 4, downloadedImage),
    two(0x1d, 0x2f, 3),
    two(0x1d, 0x38, 7, countedByDoubleWord),
    two(0x1d, 0x41, 4),
    two(0x1d, 0x42, 3),
    two(0x1d, 0x43, 3, counter),
    two(0x1d, 0x44, 15, bitmapFile),
    two(0x1d, 0x45, 3),
    two(0x1d, 0x46, 6),
    two(0x1d, 0x48, 3),
    two(0x1d, 0x49, 3),
    two(0x1d, 0x4c, 4),
    two(0x1d, 0x50, 4),
    two(0x1d, 0x54, 3),
    two(0x1d, 0x56, 3, cut),
    two(0x1d, 0x57, 4),
    two(0x1d, 0x5a, 3),
    two(0x1d, 0x5c, 4),
    two(0x1d, 0x5e, 5),
    two(0x1d, 0x61, 3),
    two(0x1d, 0x62, 3),
    two(0x1d, 0x66, 3),
    two(0x1d, 0x67, 6),
    two(0x1d, 0x68, 3),
    two(0x1d, 0x6a, 3),
    two(0x1d, 0x6b, 3, barcode),
    two(0x1d, 0x72, 3),
    two(0x1d, 0x77, 3),
    two(0x1d, 0x7a, 5),
    two(0x1d, 0x7c, 3),
};

const Form* formOf(ByteView bytes, const Dialect& dialect) {
  const auto begins = [&](const Form& form) {
    const auto known =
        static_cast<std::ptrdiff_t>(std::min<std::size_t>(bytes.size(), form.prefixLength));
    return knows(dialect, form.knownWith) &&
           std::equal(bytes.begin(), bytes.begin() + known, form.prefix.begin());
  };
  const auto found = std::find_if(std::begin(commandForms), std::end(commandForms), begins);
  return found == std::end(commandForms) ? nullptr : found;
}

bool startsCommand(std::uint8_t byte) {
  return byte == 0x10 || byte == 0x1b || byte == 0x1c || byte == 0x1d;
}

}  // namespace

std::uint64_t leastCommandLength(ByteView bytes, const Dialect& dialect) {
  if (!startsCommand(bytes[0])) {
    return 1;
  }
  if (bytes.size() < 2) {
    return 2;
  }
  const Form* form = formOf(bytes, dialect);
  if (form == nullptr) {
    return bytes.size();
  }
  if (bytes.size() < form->header) {
    return bytes.size() < form->prefixLength ? form->prefixLength : form->header;
  }
  return form->rule ? form->rule(bytes) : form->header;
}

bool isKnownCommand(ByteView bytes, const Dialect& dialect) {
  constexpr std::uint8_t withoutParameters[][2] = {
      {0x1b, 0x0c}, {0x1b, 0x32}, {0x1b, 0x3c}, {0x1b, 0x40}, {0x1b, 0x4c},
      {0x1b, 0x53}, {0x1b, 0x69}, {0x1b, 0x6d}, {0x1b, 0x6f}, {0x1b, 0x71},
      {0x1c, 0x26}, {0x1c, 0x2e}, {0x1c, 0x62}, {0x1c, 0x63}, {0x1d, 0x05},
      {0x1d, 0x0c}, {0x1d, 0x3a}, {0x1d, 0x3c}, {0x1d, 0x63},
  };
  if (bytes.size() < 2 || formOf(bytes, dialect) != nullptr) {
    return true;
  }
  return std::any_of(
      std::begin(withoutParameters), std::end(withoutParameters),
      [&](const auto& known) { return known[0] == bytes[0] && known[1] == bytes[1]; });
}

}  // namespace quordalvane::simulator
