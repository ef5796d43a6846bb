#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace quordalvane::tool {

/// An object whose keys keep their order. A source that looks into one includes the library's own
/// header, which is long.
using Json = nlohmann::ordered_json;

/// An object that a header can hold without the library's own header. One that was moved from may
/// only be assigned to or destroyed.
class JsonObject {
 public:
  JsonObject();  ///< without keys
  explicit JsonObject(Json object);
  JsonObject(const JsonObject& other);
  JsonObject(JsonObject&& other) noexcept;
  JsonObject& operator=(JsonObject other) noexcept;
  ~JsonObject();

  /// The value of the key, which is null and added if it was not there.
  Json& operator[](const char* key);

  bool isEmpty() const;
  const Json& value() const { return *object_; }

 private:
  std::unique_ptr<Json> object_;
};

/// The object as JSON without a line feed; no control character is in it raw, invalid bytes are
/// replaced.
std::string inOneLine(const Json& json);

}  // namespace quordalvane::tool
