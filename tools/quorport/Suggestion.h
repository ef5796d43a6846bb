#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// The candidate that the writer of `word` probably meant. It begins with the word, or differs from
/// it in few letters. If there are several, the nearest one is returned, and the first of equally
/// near ones. "" if there is none.
std::string suggestion(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace quordalvane::tool
