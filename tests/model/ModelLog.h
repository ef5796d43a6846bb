#pragma once

#include <optional>
#include <string>
#include <utility>

#include "iphone-IOPort/LogWriter.h"
#include "tests/model/Model.h"

namespace quordalvane::test {

inline std::string number(std::int64_t value) {
  return std::to_string(value);
}

/// An unsigned value as "%d" prints it.
inline std::string signed32(std::uint32_t value) {
  return std::to_string(static_cast<std::int32_t>(value));
}

inline std::string textOr(const std::optional<std::string>& value) {
  return value.value_or("(null)");
}

/// The records of one method.
class Model::Log {
 public:
  Log(Model& model, std::string method) : trace_(model.trace_), method_(std::move(method)) {}

  static bool wanted() { return LogWriter::isLogging() && LogWriter::isTargetLogLevel(0); }

  void start(const std::string& message) const { say(ZKLogTypeInternalMethodStart, message); }
  void end(const std::string& message) const { say(ZKLogTypeInternalMethodEnd, message); }
  void process(const std::string& message) const { say(ZKLogTypeProcess, message); }
  void error(const std::string& message) const { say(ZKLogTypeError, message); }
  void say(ZKLogType type, const std::string& message) const {
    if (wanted()) {
      trace_.log(type, 0, method_, message);
    }
  }

  /// A message whose argument is computed only if the message is wanted.
  template <typename Argument>
  void error(const std::string& message, Argument argument) const {
    if (wanted()) {
      error(message + argument());
    }
  }
  template <typename Argument>
  void process(const std::string& message, Argument argument) const {
    if (wanted()) {
      process(message + argument());
    }
  }

  std::string at(const void* object) const { return trace_.nameOf(object); }

 private:
  Trace& trace_;
  const std::string method_;
};

/// An object without a name in the trace, such as a command that an operation made itself.
inline constexpr const char* someAddress = "<address>";

}  // namespace quordalvane::test
