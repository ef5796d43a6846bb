#include "tools/quorport/Json.h"

#include <nlohmann/json.hpp>

#include "text/Quoted.h"

namespace quordalvane::tool {

std::string inOneLine(const Json& json) {
  // The library escapes the control characters of ASCII; those of terminals with eight bits remain.
  return printable(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace quordalvane::tool
