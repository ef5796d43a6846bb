#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// The texts in order, with the separator between each two.
std::string joined(const std::vector<std::string>& texts, std::string_view separator);

}  // namespace quordalvane::tool
