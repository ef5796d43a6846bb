#include "job/PrintCommands.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace quordalvane {
namespace {

std::size_t littleEndian(ByteView data, std::size_t at, std::size_t width) {
  std::size_t value = 0;
  for (std::size_t i = width; i > 0; --i) {
    value = value << 8U | data[at + i - 1];
  }
  return value;
}

bool isOneOf(std::uint8_t byte, std::string_view bytes) {
  return bytes.find(static_cast<char>(byte)) != std::string_view::npos;
}

std::optional<PrintCommand> plain(std::size_t length) {
  return PrintCommand{length, false};
}

std::optional<PrintCommand> counted(std::size_t header, std::size_t payload) {
  return PrintCommand{header + payload, true};
}

/// Commands that have the same first byte and the same fixed length; `selectors` lists their second
/// bytes.
struct PlainForms {
  std::uint8_t lead;
  std::size_t length;
  std::string_view selectors;
};

using namespace std::string_view_literals;

constexpr PlainForms plainCommandForms[] = {
    {0x10, 3, "\x04\x05"sv},
    {0x1b, 2, "\x0c\x32\x3c\x40\x4c\x53\x69\x6d\x76"sv},
    {0x1b, 3,
     "\x06\x20\x21\x25\x2d\x33\x3d\x3f\x45\x47\x4a\x4b\x4d\x52\x54\x55\x56\x61\x64"
     "\x65\x72\x74\x75\x7b"sv},
    {0x1b, 4, "\x1d\x1e\x24\x5c\x63"sv},
    {0x1b, 5, "\x70"sv},
    {0x1b, 10, "\x57"sv},
    {0x1c, 2, "\x26\x2e"sv},
    {0x1c, 3, "\x21\x2d\x43\x57"sv},
    {0x1c, 4, "\x3f\x53\x70"sv},
    {0x1d, 2, "\x3a"sv},
    {0x1d, 3, "\x21\x2f\x42\x45\x48\x49\x54\x61\x62\x66\x68\x72\x77"sv},
    {0x1d, 4, "\x24\x4c\x50\x57\x5c"sv},
    {0x1d, 5, "\x5e\x7a"sv},
    {0x1d, 6, "\x67"sv},
};

/// A command of a fixed length that is recognised by more than two bytes.
struct FixedForm {
  std::initializer_list<std::uint8_t> prefix;
  std::size_t length;
};

// In this table and in `commandForms`, the first row with a matching prefix is used. So of two
// prefixes that begin with the same bytes, the longer prefix must be listed first.
const FixedForm fixedForms[] = {
    {{0x1b, 0x1d, 0x03}, 6}, {{0x1b, 0x23, 0x2a}, 5}, {{0x1b, 0x23, 0x2c}, 6},
    {{0x1b, 0x23}, 3},       {{0x1b, 0x2a, 0x72}, 4},
};

/// Commands of a variable length: their prefix, the length of the shortest command, and a function
/// that reads a command from data of at least this length.
struct Form {
  std::initializer_list<std::uint8_t> prefix;
  std::size_t shortest;
  std::optional<PrintCommand> (*read)(ByteView data);
};

// In these commands a letter selects the function. If another byte is in the place of the letter,
// for example an end-of-block mark, printers disagree about the bytes that follow.
std::optional<PrintCommand> countedInTwoBytes(ByteView data) {
  const bool isLetter = (data[2] | 0x20) >= 'a' && (data[2] | 0x20) <= 'z';
  return isLetter ? counted(5, littleEndian(data, 3, 2)) : std::nullopt;
}

std::optional<PrintCommand> countedInFourBytes(ByteView data) {
  return counted(7, littleEndian(data, 3, 4));
}

std::optional<PrintCommand> bitImage(ByteView data) {
  const std::size_t columns = littleEndian(data, 3, 2);
  switch (data[2]) {
    case 0:
    case 1:
      return counted(5, columns);
    case 32:
    case 33:
      return counted(5, columns * 3);
    default:
      return std::nullopt;
  }
}

std::optional<PrintCommand> raster(ByteView data) {
  if (!isOneOf(data[3], "\0\1\2\3\x30\x31\x32\x33"sv)) {
    return std::nullopt;
  }
  return counted(8, littleEndian(data, 4, 2) * littleEndian(data, 6, 2));
}

std::optional<PrintCommand> downloadedImage(ByteView data) {
  return counted(4, std::size_t{8} * data[2] * data[3]);
}

// The command has the form 1b 26 y c1 c2, followed by the characters. Each character consists of
// one byte with its width x, and y * x bytes with its dots.
std::optional<PrintCommand> userCharacters(ByteView data) {
  const std::size_t rows = data[2];
  const std::uint8_t first = data[3];
  const std::uint8_t last = data[4];
  if (rows == 0 || first < 0x20 || last > 0x7e || first > last) {
    return std::nullopt;
  }
  std::size_t length = 5;
  for (int i = first; i <= last; ++i) {
    length += 1 + (length < data.size() ? rows * data[length] : 0);
  }
  return counted(length, 0);
}

// The command has the form 1c 71 n, followed by n images. Each image consists of its size, xL xH yL
// yH in units of eight dots, and its dots.
std::optional<PrintCommand> storedImages(ByteView data) {
  std::size_t length = 3;
  for (int i = 0; i < data[2]; ++i) {
    const bool isThere = data.size() >= length + 4;
    const auto image = isThere ? data.subspan(length, 4) : ByteView();
    length += 4 + (isThere ? 8 * littleEndian(image, 0, 2) * littleEndian(image, 2, 2) : 0);
  }
  return counted(length, 0);
}

/// Reads a command that ends with a zero byte. Returns null if the content before the zero is too
/// long, or if `isOdd` is true for one of its bytes. Some printers reject such content, so printers
/// disagree about the end of the command. If the zero is missing, the returned length is larger
/// than the data.
std::optional<PrintCommand> terminated(ByteView data, std::size_t header, std::size_t most,
                                       bool (*isOdd)(std::uint8_t before, std::uint8_t byte)) {
  const auto content = data.subspan(header);
  const auto end = std::find(content.begin(), content.end(), std::uint8_t{0});
  const bool isEven = std::adjacent_find(content.begin(), end, isOdd) == end &&
                      (content.begin() == end || !isOdd(0, *content.begin()));
  const auto count = static_cast<std::size_t>(end - content.begin());
  return isEven && count <= most ? plain(header + count + 1) : std::nullopt;
}

std::optional<PrintCommand> tabStops(ByteView data) {
  constexpr std::size_t most = 32;
  return terminated(data, 2, most,
                    [](std::uint8_t before, std::uint8_t byte) { return byte <= before; });
}

std::optional<PrintCommand> barcode(ByteView data) {
  constexpr std::size_t most = 255;
  const std::uint8_t kind = data[2];
  if (kind <= 6) {
    return terminated(data, 3, most,
                      [](std::uint8_t, std::uint8_t byte) { return byte < 0x20 || byte > 0x7e; });
  }
  if (kind < 65 || kind > 79) {
    return std::nullopt;
  }
  return counted(4, data[3]);
}

// Real-time actions, such as a pulse for the cash drawer. Functions 1 and 2 have two more
// parameters.
std::optional<PrintCommand> realTimeAction(ByteView data) {
  return data[2] == 1 || data[2] == 2 ? plain(5) : std::nullopt;
}

std::optional<PrintCommand> cut(ByteView data) {
  return plain(isOneOf(data[2], "\x41\x42\x61\x62\x67\x68"sv) ? 4 : 3);
}

const Form commandForms[] = {
    {{0x10, 0x14}, 3, realTimeAction},
    {{0x1b, 0x26}, 6, userCharacters},
    {{0x1b, 0x28}, 5, countedInTwoBytes},
    {{0x1b, 0x2a}, 5, bitImage},
    {{0x1b, 0x44}, 3, tabStops},
    {{0x1c, 0x28}, 5, countedInTwoBytes},
    {{0x1c, 0x71}, 3, storedImages},
    {{0x1d, 0x28}, 5, countedInTwoBytes},
    {{0x1d, 0x2a}, 4, downloadedImage},
    {{0x1d, 0x38, 0x4c}, 7, countedInFourBytes},
    {{0x1d, 0x56}, 3, cut},
    {{0x1d, 0x6b}, 4, barcode},
    {{0x1d, 0x76, 0x30}, 8, raster},
};

bool startsCommand(std::uint8_t byte) {
  return byte == 0x10 || (byte >= 0x1b && byte <= 0x1d);
}

/// Returns whether `data` and `prefix` begin with the same bytes, compared up to the end of the
/// shorter sequence.
bool mayStartWith(ByteView data, std::initializer_list<std::uint8_t> prefix) {
  const auto known = std::min(data.size(), prefix.size());
  return std::equal(prefix.begin(), prefix.begin() + known, data.begin());
}

}  // namespace

std::optional<PrintCommand> printCommandAt(ByteView data) {
  if (!startsCommand(data.front())) {
    return plain(1);
  }
  if (data.size() < 2) {
    return plain(2);
  }
  for (const FixedForm& form : fixedForms) {
    if (mayStartWith(data, form.prefix)) {
      return plain(form.length);
    }
  }
  for (const Form& form : commandForms) {
    if (mayStartWith(data, form.prefix)) {
      return data.size() < form.shortest ? plain(form.shortest) : form.read(data);
    }
  }
  for (const PlainForms& forms : plainCommandForms) {
    if (forms.lead == data[0] && isOneOf(data[1], forms.selectors)) {
      return plain(forms.length);
    }
  }
  return std::nullopt;
}

}  // namespace quordalvane
