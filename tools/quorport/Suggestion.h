#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// Returns the candidate that the writer of `word` probably meant. This candidate begins with the
/// word, or differs from it in few letters. If there are several, returns the nearest one, or the
/// first of equally near ones. Returns "" if there is none.
std::string suggestion(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace quordalvane::tool
