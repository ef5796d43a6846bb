#include "parsers/ReplyParsers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace quordalvane {
namespace {

using ByteView = std::span<const std::uint8_t>;

struct Field {
  std::size_t location;
  std::size_t length;
};

constexpr std::array<std::uint8_t, 3> firmwareHead = {0x1b, 0x23, 0x2a};
constexpr std::array<std::uint8_t, 2> firmwareTail = {0x0a, 0x00};
constexpr std::size_t longestFirmwareText = 64;

constexpr std::array<std::uint8_t, 3> dipSwitchHead = {0x1b, 0x23, 0x2c};
constexpr std::size_t dipSwitchSettingsOffset =
    4;  // the settings follow the head and the digit of the bank
constexpr std::uint8_t dipSwitchEnd = 0x0a;
constexpr std::size_t fewestSettings = 2;

ByteView given(const std::uint8_t* bytes, std::int32_t count) {
  return count > 0 ? ByteView(bytes, static_cast<std::size_t>(count)) : ByteView();
}

bool startsWith(ByteView bytes, ByteView head) {
  return bytes.size() >= head.size() && std::equal(head.begin(), head.end(), bytes.begin());
}

// std::isprint is not used, because its result depends on the locale.
bool isPrintableAscii(std::uint8_t byte) {
  return byte >= 0x20 && byte <= 0x7e;
}

std::optional<Field> firmwareTextAt(ByteView bytes, std::size_t start) {
  if (!startsWith(bytes.subspan(start), firmwareHead)) {
    return std::nullopt;
  }
  const std::size_t location = start + firmwareHead.size();
  const ByteView rest = bytes.subspan(location);
  const auto textEnd = std::find_if_not(rest.begin(), rest.end(), isPrintableAscii);
  const auto length = static_cast<std::size_t>(textEnd - rest.begin());
  if (length < 1 || length > longestFirmwareText ||
      !startsWith(rest.subspan(length), firmwareTail)) {
    return std::nullopt;
  }
  return Field{location, length};
}

std::optional<Field> firstFirmwareText(ByteView bytes) {
  for (std::size_t start = 0; start < bytes.size(); ++start) {
    if (const auto text = firmwareTextAt(bytes, start)) {
      return text;
    }
  }
  return std::nullopt;
}

bool isDipSwitchReply(ByteView bytes) {
  return bytes.size() >= dipSwitchSettingsOffset && startsWith(bytes, dipSwitchHead) &&
         (bytes[dipSwitchHead.size()] == '1' || bytes[dipSwitchHead.size()] == '2');
}

std::optional<Field> dipSwitchSettings(ByteView bytes) {
  std::size_t start = 0;
  while (start < bytes.size() && !isDipSwitchReply(bytes.subspan(start))) {
    ++start;
  }
  if (start == bytes.size()) {
    return std::nullopt;
  }
  const ByteView rest = bytes.subspan(start + dipSwitchSettingsOffset);
  const auto end = std::find(rest.rbegin(), rest.rend(), dipSwitchEnd);
  if (end == rest.rend()) {
    return std::nullopt;
  }
  const auto length = static_cast<std::size_t>(rest.rend() - end) - 1;
  if (length < fewestSettings) {
    return std::nullopt;
  }
  return Field{start + dipSwitchSettingsOffset, length};
}

std::int32_t tell(std::optional<Field> field, std::int32_t* location, std::int32_t* length) {
  if (!field) {
    return -1;
  }
  *location = static_cast<std::int32_t>(field->location);
  *length = static_cast<std::int32_t>(field->length);
  return 0;
}

}  // namespace

std::int32_t parseFirmwareInfo(const std::uint8_t* bytes, std::int32_t count,
                               std::int32_t* location, std::int32_t* length) {
  return tell(firstFirmwareText(given(bytes, count)), location, length);
}

std::int32_t parseDipSwitchInfo(const std::uint8_t* bytes, std::int32_t count,
                                std::int32_t* location, std::int32_t* length) {
  return tell(dipSwitchSettings(given(bytes, count)), location, length);
}

}  // namespace quordalvane
