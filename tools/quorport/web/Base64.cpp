#include "tools/quorport/web/Base64.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace quordalvane::tool {

std::string base64(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8U | (k < count ? bytes[i + k] : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= count ? digits[bits >> (18U - 6U * k) & 0x3fU] : '=';
    }
  }
  return text;
}

}  // namespace quordalvane::tool
