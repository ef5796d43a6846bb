#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace quordalvane::tool {

/// An object whose keys keep their order. Only sources that look into an object include the
/// library's own header, which is long.
using Json = nlohmann::ordered_json;

/// Holds a JSON object, so that other headers need not include the library's header. After a move
/// it may only be assigned to or destroyed.
class JsonObject {
 public:
  JsonObject();  ///< an object without keys
  explicit JsonObject(Json object);
  JsonObject(const JsonObject& other);
  JsonObject(JsonObject&& other) noexcept;
  JsonObject& operator=(JsonObject other) noexcept;
  ~JsonObject();

  /// Returns the value of the key. If the key is missing, adds the key with the value null.
  Json& operator[](const char* key);

  bool isEmpty() const;
  const Json& value() const { return *object_; }

 private:
  std::unique_ptr<Json> object_;
};

/// Returns the object in one line of JSON, without a line feed. Control characters are escaped, and
/// invalid bytes are replaced.
std::string inOneLine(const Json& json);

}  // namespace quordalvane::tool
