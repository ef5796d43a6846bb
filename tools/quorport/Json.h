#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace quordalvane::tool {

/// A JSON object whose keys keep their order. The header of the JSON library is long, so it is
/// included only by sources that read or write the contents of an object.
using Json = nlohmann::ordered_json;

/// Holds a JSON object, so that other headers need not include the header of the JSON library. An
/// object that was moved from may only be assigned to or destroyed.
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
