#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// The texts, one after the other, with the separator between them.
std::string joined(const std::vector<std::string>& texts, std::string_view separator);

}  // namespace quordalvane::tool
