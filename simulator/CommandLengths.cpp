#include "simulator/CommandLengths.h"

#include <algorithm>
#include <array>

#include "simulator/CommandRules.h"

namespace quordalvane::simulator {
namespace {

using namespace rules;

using LengthRule = std::uint64_t (*)(ByteView);

struct Form {
  std::uint8_t prefixLength;
  std::array<std::uint8_t, 3> prefix;
  std::uint8_t header;  // how many bytes must be present before `rule` is called
  LengthRule rule;      // null means that the command ends with its header
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

// Order matters: a longer prefix must precede the shorter one that it refines.
constexpr Form commandForms[] = {
    only(KnownWith::Block, three(0x1b, 0x1d, 0x03, 6)),
    only(KnownWith::LineMode, three(0x1b, 0x23, 0x2a, 5)),
    only(KnownWith::LineMode, three(0x1b, 0x23, 0x2c, 6)),
    only(KnownWith::LineMode, three(0x1b, 0x2a, 0x72, 4)),
    three(0x1d, 0x76, 0x30, 8, raster),
    two(0x1d, 0x51, 8, raster),
    three(0x1b, 0x7e, 0x4a, 4),
    only(KnownWith::Display, two(0x1b, 0x57, 4, displayWindow)),

    two(0x10, 0x04, 3, realTimeStatus),
    two(0x10, 0x05, 3),
    two(0x10, 0x14, 3, realTimeAction),

    two(0x12, 0x23, 3),
    two(0x12, 0x2a, 4, countedRows),
    two(0x12, 0x56, 4, rowsOfDots),
    two(0x12, 0x6d, 4),
    two(0x12, 0x76, 4, rowsOfDots),

    only(KnownWith::LineMode, two(0x1b, 0x06, 3)),
    two(0x1b, 0x0e, 3),
    two(0x1b, 0x14, 3),
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
    two(0x1b, 0x37, 5),
    two(0x1b, 0x38, 4),
    two(0x1b, 0x39, 3),
    two(0x1b, 0x3d, 3),
    two(0x1b, 0x3f, 3),
    two(0x1b, 0x41, 3),
    two(0x1b, 0x42, 4),
    two(0x1b, 0x43, 3),
    two(0x1b, 0x44, 2, tabStops),
    two(0x1b, 0x45, 3),
    two(0x1b, 0x46, 3),
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
    two(0x1b, 0x6a, 3),
    two(0x1b, 0x6c, 3),
    two(0x1b, 0x70, 5),
    two(0x1b, 0x72, 3),
    two(0x1b, 0x74, 3),
    two(0x1b, 0x75, 3),
    two(0x1b, 0x76, 2),
    two(0x1b, 0x7a, 3),
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
    two(0x1c, 0x72, 3),
    two(0x1c, 0x74, 3),
    two(0x1c, 0x7d, 4),

    two(0x1d, 0x21, 3),
    two(0x1d, 0x24, 4),
    two(0x1d, 0x27, 3, dividedCurves),
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

    two(0x1f, 0x24, 4),
    two(0x1f, 0x28, 5, countedByWord),
    two(0x1f, 0x2c, 3),
    two(0x1f, 0x2e, 3),
    two(0x1f, 0x3b, 3),
    two(0x1f, 0x43, 3),
    two(0x1f, 0x45, 3),
    two(0x1f, 0x54, 4),
    two(0x1f, 0x58, 3),
    two(0x1f, 0x5e, 4),
    two(0x1f, 0x72, 3),
    two(0x1f, 0x76, 3),
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

// The byte 12 (hex) begins commands of small printers, and 1f begins commands of customer displays.
bool startsCommand(std::uint8_t byte) {
  return byte == 0x10 || byte == 0x12 || (byte >= 0x1b && byte <= 0x1f && byte != 0x1e);
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
      {0x12, 0x45}, {0x12, 0x54}, {0x1b, 0x0c}, {0x1b, 0x30}, {0x1b, 0x31}, {0x1b, 0x32},
      {0x1b, 0x34}, {0x1b, 0x35}, {0x1b, 0x3c}, {0x1b, 0x40}, {0x1b, 0x4c}, {0x1b, 0x53},
      {0x1b, 0x69}, {0x1b, 0x6d}, {0x1b, 0x6f}, {0x1b, 0x71}, {0x1c, 0x26}, {0x1c, 0x2e},
      {0x1c, 0x62}, {0x1c, 0x63}, {0x1d, 0x05}, {0x1d, 0x0c}, {0x1d, 0x3a}, {0x1d, 0x3c},
      {0x1d, 0x63}, {0x1f, 0x01}, {0x1f, 0x02}, {0x1f, 0x03}, {0x1f, 0x0a}, {0x1f, 0x0d},
      {0x1f, 0x3a}, {0x1f, 0x40}, {0x1f, 0x42}, {0x1f, 0x55},
  };
  if (bytes.size() < 2 || formOf(bytes, dialect) != nullptr) {
    return true;
  }
  return std::any_of(
      std::begin(withoutParameters), std::end(withoutParameters),
      [&](const auto& known) { return known[0] == bytes[0] && known[1] == bytes[1]; });
}

}  // namespace quordalvane::simulator
