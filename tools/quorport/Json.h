#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace quordalvane::tool {

/// An object whose keys keep their order. A source that looks into one includes the library's own
/// header, which is long.
using Json = nlohmann::ordered_json;

/// The object as JSON without a line feed; no control character is in it raw, invalid bytes are
/// replaced.
std::string inOneLine(const Json& json);

}  // namespace quordalvane::tool
