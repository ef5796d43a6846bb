#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The kind of a log record. C programs and debuggers know the enumeration by its tag.
enum _ZKLogType : std::int32_t {     // NOLINT: the name is given
  ZKLogTypeQuorIOAPIStart = 0,       ///< a public call begins
  ZKLogTypeQuorIOAPIEnd = 1,         ///< and ends
  ZKLogTypeInternalMethodStart = 2,  ///< an internal method begins
  ZKLogTypeInternalMethodEnd = 3,    ///< and ends
  ZKLogTypeWrite = 4,                ///< bytes that went to the printer
  ZKLogTypeRead = 5,                 ///< bytes that it sent
  ZKLogTypeProcess = 6,              ///< a step on the way
  ZKLogTypeError = 7,                ///< something failed
};
/// The name under which everything here knows it.
using ZKLogType = _ZKLogType;

/// The enumerator's name without its prefix, as in "InternalMethodStart"; "Unknown" for any other
/// value.
QUOR_EXPORT std::string_view logTypeName(ZKLogType type) noexcept;

/// The system's id of the calling thread.
std::int32_t currentThreadId() noexcept;

/// The time of a record that is made now.
std::chrono::system_clock::time_point currentTime() noexcept;

/// One record on its way from the thread that logs to the sinks. `file` and `method` are not
/// copied: they are never null and outlive the process's logging, as the texts of a program do.
struct LogRecord {
  std::chrono::system_clock::time_point time;  ///< when it was made
  std::int32_t thread = 0;                     ///< of the thread that logged, see currentThreadId
  ZKLogType type = ZKLogTypeProcess;           ///< its kind
  std::int32_t level = 0;                      ///< that it was logged with
  std::int64_t line = 0;                       ///< of the statement that logged, in `file`
  const char* file = "";                       ///< the name of its source file
  const char* method = "";                     ///< the function that it is in
  std::string object;                          ///< the address of the object that logged, as text
  std::string message;                         ///< the text
};

}  // namespace quordalvane
