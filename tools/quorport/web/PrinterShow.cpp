#include "tools/quorport/web/PrinterShow.h"

#include <nlohmann/json.hpp>

#include "text/Quoted.h"

namespace quordalvane::tool {

Json PrinterShow::changing() const {
  const std::size_t index = number_ - 1;
  return {{"state", control_.get("state", index)},
          {"settings", control_.get("settings", index)},
          {"counters", control_.get("counters", index)},
          {"faults", control_.get("faults", index)},
          {"paper", {{"width", station_.printer().paper().width()}, {"rows", paper_.length()}}},
          {"host", station_.hasHost()}};
}

Json PrinterShow::describe() const {
  Json json = {{"id", number_}, {"name", station_.name()}, {"place", printable(station_.place())}};
  json.update(changing());
  return json;
}

std::optional<std::string> PrinterShow::change() {
  Json json = {{"printer", number_}};
  json.update(changing());
  std::string text = inOneLine(json);
  if (text == shown_) {
    return std::nullopt;
  }
  shown_ = text;
  return text;
}

}  // namespace quordalvane::tool
