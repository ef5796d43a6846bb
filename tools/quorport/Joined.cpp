#include "tools/quorport/Joined.h"

namespace quordalvane::tool {

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string all;
  for (const std::string& text : texts) {
    all.append(all.empty() ? "" : separator).append(text);
  }
  return all;
}

}  // namespace quordalvane::tool
