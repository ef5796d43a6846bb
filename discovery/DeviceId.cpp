#include "discovery/DeviceId.h"

namespace quordalvane {
namespace {

void append(std::string& id, std::string_view key, std::string_view value) {
  if (value.empty()) {
    return;
  }
  id += key;
  for (const char c : value) {
    const bool isPlain = c >= ' ' && c <= '~' && c != ';' && c != ':' && c != '"';
    id += isPlain ? c : ' ';
  }
  id += ';';
}

}  // namespace

std::string deviceIdOf(std::string_view maker, std::string_view model, std::string_view serial) {
  std::string id;
  append(id, "MFG:", maker);
  append(id, "MDL:", model);
  append(id, "SN:", serial);
  append(id, "CLS:", "PRINTER");
  return id;
}

}  // namespace quordalvane
