#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The kind of a log record. C programs and debuggers know the enumeration by this name.
enum _ZKLogType : std::int32_t {     // NOLINT: the name is given
  ZKLogTypeQuorIOAPIStart = 0,       ///< a public call begins
  ZKLogTypeQuorIOAPIEnd = 1,         ///< a public call ends
  ZKLogTypeInternalMethodStart = 2,  ///< an internal method begins
  ZKLogTypeInternalMethodEnd = 3,    ///< an internal method ends
  ZKLogTypeWrite = 4,                ///< bytes that were sent to the printer
  ZKLogTypeRead = 5,                 ///< bytes that the printer sent
  ZKLogTypeProcess = 6,              ///< a step of an operation
  ZKLogTypeError = 7,                ///< something failed
};
/// The name that this library uses for the enumeration.
using ZKLogType = _ZKLogType;

/// Returns the name of the enumerator without its prefix, for example "InternalMethodStart";
/// "Unknown" for any other value.
QUOR_EXPORT std::string_view logTypeName(ZKLogType type) noexcept;

/// Returns the system's ID of the calling thread.
std::int32_t currentThreadId() noexcept;

/// Returns the time for a record that is made now.
std::chrono::system_clock::time_point currentTime() noexcept;

/// One log record. `file` and `method` are not copied: they are never null and must be valid until
/// the process ends, as string literals are.
struct LogRecord {
  std::chrono::system_clock::time_point time;  ///< when the record was made
  std::int32_t thread = 0;            ///< the ID of the thread that logged; see currentThreadId
  ZKLogType type = ZKLogTypeProcess;  ///< the kind of the record
  std::int32_t level = 0;             ///< the level of the log statement
  std::int64_t line = 0;              ///< the line of the log statement in `file`
  const char* file = "";              ///< the source file of the log statement
  const char* method = "";            ///< the method that contains the log statement
  std::string object;                 ///< the address of the object that logged, as text
  std::string message;                ///< the text of the record
};

}  // namespace quordalvane
