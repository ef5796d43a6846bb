#include "tools/quorport/Json.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "text/Quoted.h"

namespace quordalvane::tool {

JsonObject::JsonObject() : JsonObject(Json::object()) {}
JsonObject::JsonObject(Json object) : object_(std::make_unique<Json>(std::move(object))) {}
JsonObject::JsonObject(const JsonObject& other) : JsonObject(*other.object_) {}
JsonObject::JsonObject(JsonObject&& other) noexcept = default;
JsonObject::~JsonObject() = default;

JsonObject& JsonObject::operator=(JsonObject other) noexcept {
  object_ = std::move(other.object_);
  return *this;
}

Json& JsonObject::operator[](const char* key) {
  return (*object_)[key];
}

bool JsonObject::isEmpty() const {
  return object_->empty();
}

std::string inOneLine(const Json& json) {
  // The library escapes only the control characters of ASCII; `printable` also escapes U+0080 to
  // U+009F, which some terminals obey.
  return printable(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace quordalvane::tool
