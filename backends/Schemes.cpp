#include "backends/Schemes.h"

#include <algorithm>
#include <array>

#include "backends/posix/Schemes.h"
#include "backends/virtual/VirtualScheme.h"

namespace quordalvane {
namespace {

constexpr std::array table = {
    &virtuals::virtualScheme, &posix::tcpScheme, &posix::unixScheme,
    &posix::serialScheme,     &posix::usbScheme,
};

}  // namespace

bool OpenCause::fits(const std::error_code& error) const {
  const bool sameCategory = category == nullptr ? error.category() == std::generic_category() ||
                                                      error.category() == std::system_category()
                                                : error.category() == category();
  return sameCategory && (code == anyCode || code == error.value());
}

std::span<const Scheme* const> schemes() {
  return table;
}

const Scheme* findScheme(std::string_view name) {
  const auto* const found = std::find_if(
      table.begin(), table.end(), [&](const Scheme* scheme) { return scheme->name == name; });
  return found == table.end() ? nullptr : *found;
}

}  // namespace quordalvane
