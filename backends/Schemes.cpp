#include "backends/Schemes.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "backends/posix/Schemes.h"
#include "backends/virtual/VirtualScheme.h"

namespace quordalvane {
namespace {

std::vector<const Scheme*>& table() {
  static std::vector<const Scheme*> schemes = [] {
    std::vector<const Scheme*> all = {&virtuals::virtualScheme};
    all.insert(all.end(), std::begin(posix::schemes), std::end(posix::schemes));
    return all;
  }();
  return schemes;
}

}  // namespace

bool OpenCause::fits(const std::error_code& error) const {
  const bool sameCategory = category == nullptr ? error.category() == std::generic_category() ||
                                                      error.category() == std::system_category()
                                                : error.category() == category();
  return sameCategory && (code == anyCode || code == error.value());
}

void addScheme(const Scheme& scheme) {
  if (findScheme(scheme.name) == nullptr) {
    table().push_back(&scheme);
  }
}

std::span<const Scheme* const> schemes() {
  return table();
}

const Scheme* findScheme(std::string_view name) {
  const auto found = std::find_if(table().begin(), table().end(),
                                  [&](const Scheme* scheme) { return scheme->name == name; });
  return found == table().end() ? nullptr : *found;
}

}  // namespace quordalvane
