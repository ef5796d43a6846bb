#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// Returns the texts in order, with the separator between any two.
std::string joined(const std::vector<std::string>& texts, std::string_view separator);

}  // namespace quordalvane::tool
