#include "tools/quorport/web/PageFiles.h"

#include <utility>

namespace quordalvane::tool {

std::string_view typeOf(std::string_view name) {
  constexpr std::pair<std::string_view, std::string_view> types[] = {
      {".html", "text/html; charset=utf-8"},
      {".css", "text/css; charset=utf-8"},
      {".js", "text/javascript; charset=utf-8"},
      {".svg", "image/svg+xml"},
      {".png", "image/png"},
      {".txt", "text/plain; charset=utf-8"},
      {".json", "application/json"},
      {".bin", "application/octet-stream"},
  };
  for (const auto& [ending, type] : types) {
    if (name.ends_with(ending)) {
      return type;
    }
  }
  return "";
}

}  // namespace quordalvane::tool
