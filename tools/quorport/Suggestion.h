#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::tool {

/// The candidate that the writer of `word` probably meant: one that begins with the word, or
/// differs in few letters. Of several it is the nearest, and of equally near ones the first. "" if
/// there is none.
std::string suggestion(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace quordalvane::tool
