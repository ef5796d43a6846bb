#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// The candidate that somebody who wrote `word` probably meant: it begins with the word, or few
/// letters differ. "" if there is none. Of several the nearest, and of these the first.
std::string suggestion(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace quordalvane::tool
