#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "iphone-IOPort/LogWriter.h"

/// One log statement in a method of an object. The method names itself by a constant `selector`, as
/// in
///     constexpr const char* selector = "-[ExternalAccessoryPort write:]";
///     QUOR_LOG(ZKLogTypeRead, 0, "%lu, -> %@", size, data);
///
/// Unless logging is on and the level wanted, nothing else is evaluated. Otherwise the address of
/// the object is built, then the message, outside of every lock, so that an argument may itself
/// log.
///
/// The conversions of the format, which are checked against the arguments when the program is
/// compiled:
///     %d   integer, bool or enumeration: its low 32 bits, signed; a bool is 1 or 0
///     %u   likewise, unsigned
///     %ld  likewise, all 64 bits, signed
///     %lu  likewise, unsigned
///     %f   floating-point number with six decimals and a full stop, whatever the locale
///     %p   raw or smart pointer: 0x and lower-case hexadecimal digits; none is 0x0
///     %@   string, "(null)" for none: std::string, a view, a C string, an optional of them;
///          list of strings: "(one, two)"; byte buffer or optional one: "<1b 06>"; nullptr: none
///     %%   a per cent sign
/// A per cent sign inside of an argument is text.
#define QUOR_LOG(logType, logLevel, ...)                                                 \
  do {                                                                                   \
    if (::quordalvane::LogWriter::isLogging() &&                                         \
        ::quordalvane::LogWriter::isTargetLogLevel(logLevel)) {                          \
      ::quordalvane::LogStatement(logType, logLevel, this, __FILE__, __LINE__, selector) \
          .write(::quordalvane::formatMessage(__VA_ARGS__));                             \
    }                                                                                    \
  } while (false)

namespace quordalvane {

/// A text, a list of texts or a byte buffer, or none.
using LogText = std::variant<std::monostate, std::string_view, std::span<const std::string>,
                             std::span<const std::uint8_t>>;

/// An argument of a message while its statement runs; it refers to what the caller owns. An integer
/// is its 64 bits. A C string, or nullptr, is its address, of which %p follows nothing.
using LogArgument = std::variant<std::uint64_t, double, const void*, const char*, LogText>;

/// Which alternative of LogArgument an argument becomes.
namespace log_argument {

inline LogText refer(std::string_view text) {
  return text;
}
inline LogText refer(std::span<const std::string> texts) {
  return texts;
}
inline LogText refer(std::span<const std::uint8_t> bytes) {
  return bytes;
}
inline const char* refer(const char* text) {
  return text;
}
inline const char* refer(std::nullptr_t) {
  return nullptr;
}
inline const void* refer(const void* address) {
  return address;
}
double refer(std::floating_point auto value) {
  return static_cast<double>(value);
}
std::uint64_t refer(std::integral auto value) {
  return static_cast<std::uint64_t>(value);
}

template <typename Enumeration>
requires std::is_enum_v<Enumeration> std::uint64_t refer(Enumeration value) {
  return static_cast<std::uint64_t>(static_cast<std::underlying_type_t<Enumeration>>(value));
}

template <typename Pointer>
requires requires(const Pointer& pointer) {
  { pointer.get() } -> std::convertible_to<const void*>;
}
const void* refer(const Pointer& pointer) {
  return pointer.get();
}

template <typename Value>
LogText refer(const std::optional<Value>& value) {
  return value ? LogText(refer(*value)) : LogText();
}

template <typename Argument>
using Referred = decltype(refer(std::declval<const Argument&>()));

}  // namespace log_argument

enum class LogConversion { none, percentSign, int32, uint32, int64, uint64, real, address, text };

/// The text of a format up to its next per cent sign, the conversion there, and what follows.
/// `none`: the format ends with the text, or the sign begins no conversion, which `isValid` tells
/// apart.
struct LogFormatPiece {
  std::string_view text;
  LogConversion conversion = LogConversion::none;
  std::string_view rest = {};
  bool isValid = true;
};

constexpr LogConversion conversionOf(char letter) {
  switch (letter) {
    case 'd':
      return LogConversion::int32;
    case 'u':
      return LogConversion::uint32;
    case 'f':
      return LogConversion::real;
    case 'p':
      return LogConversion::address;
    case '@':
      return LogConversion::text;
    case '%':
      return LogConversion::percentSign;
    default:
      return LogConversion::none;
  }
}

constexpr LogConversion longConversionOf(char letter) {
  switch (letter) {
    case 'd':
      return LogConversion::int64;
    case 'u':
      return LogConversion::uint64;
    default:
      return LogConversion::none;
  }
}

constexpr LogFormatPiece nextPiece(std::string_view format) {
  const std::size_t sign = format.find('%');
  if (sign == std::string_view::npos) {
    return {.text = format};
  }
  const std::string_view text = format.substr(0, sign);
  std::string_view behind = format.substr(sign + 1);
  const bool isLong = behind.starts_with('l');
  behind.remove_prefix(isLong ? 1 : 0);
  const char letter = behind.empty() ? '\0' : behind.front();
  const LogConversion conversion = isLong ? longConversionOf(letter) : conversionOf(letter);
  if (conversion == LogConversion::none) {
    return {.text = text, .isValid = false};
  }
  return {.text = text, .conversion = conversion, .rest = behind.substr(1)};
}

template <typename Argument>
constexpr bool fitsConversion(LogConversion conversion) {
  using Referred = log_argument::Referred<Argument>;
  switch (conversion) {
    case LogConversion::real:
      return std::is_same_v<Referred, double>;
    case LogConversion::address:
      return std::is_same_v<Referred, const void*> || std::is_same_v<Referred, const char*>;
    case LogConversion::text:
      return std::is_same_v<Referred, LogText> || std::is_same_v<Referred, const char*>;
    default:
      return std::is_same_v<Referred, std::uint64_t>;
  }
}

/// Whether the format has known conversions alone, one for each argument, that fit the arguments.
template <typename... Arguments>
constexpr bool fitsFormat(std::string_view format) {
  constexpr std::array<bool (*)(LogConversion), sizeof...(Arguments)> fits{
      &fitsConversion<Arguments>...};
  std::size_t used = 0;
  LogFormatPiece piece = nextPiece(format);
  for (; piece.conversion != LogConversion::none; piece = nextPiece(piece.rest)) {
    if (piece.conversion == LogConversion::percentSign) {
      continue;
    }
    if (used == fits.size() || !fits[used](piece.conversion)) {
      return false;
    }
    ++used;
  }
  return piece.isValid && used == fits.size();
}

/// A format that was found to fit its arguments when the program was compiled.
template <typename... Arguments>
class LogFormat {
 public:
  consteval LogFormat(const char* text) : text_(text) {
    if (!fitsFormat<Arguments...>(text_)) {
      throw "the conversions of this format do not fit its arguments";
    }
  }

  constexpr std::string_view text() const { return text_; }

 private:
  std::string_view text_;
};

/// The message of `format`, which fits `arguments`.
std::string buildMessage(std::string_view format, std::span<const LogArgument> arguments);

template <typename... Arguments>
std::string formatMessage(LogFormat<std::type_identity_t<Arguments>...> format,
                          const Arguments&... arguments) {
  const std::array<LogArgument, sizeof...(Arguments)> referred{
      LogArgument(log_argument::refer(arguments))...};
  return buildMessage(format.text(), referred);
}

/// A record that lacks its message yet: made first, so that the message is built last.
class LogStatement {
 public:
  LogStatement(ZKLogType type, std::int32_t level, const void* object, const char* file,
               std::int64_t line, const char* method);

  /// Hands the record with `message` to the logger.
  void write(std::string&& message) &&;

 private:
  ZKLogType type_;
  std::int32_t level_;
  LogWriter& writer_;
  std::string object_;
  const char* file_;
  std::int64_t line_;
  const char* method_;
};

}  // namespace quordalvane
