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

/// Logs one record from a method of an object. The method defines a constant `selector`, which
/// holds its own name, for example
///     constexpr const char* selector = "-[ExternalAccessoryPort write:]";
///     QUOR_LOG(ZKLogTypeRead, 0, "%lu, -> %@", size, data);
///
/// If logging is off or the level is not wanted, no argument is evaluated. Otherwise the text of
/// the object's address is built first, and then the message. No lock is held meanwhile, so the
/// evaluation of an argument may itself log.
///
/// The compiler checks that the conversions of the format fit the arguments. The conversions are:
///     %d   integer, bool or enumeration: its low 32 bits, signed; a bool is 1 or 0
///     %u   the same types: the low 32 bits, unsigned
///     %ld  the same types: all 64 bits, signed
///     %lu  the same types: all 64 bits, unsigned
///     %f   floating-point number with six decimals and a full stop, in every locale
///     %p   raw or smart pointer: 0x and lower-case hexadecimal digits; null is 0x0
///     %@   string, C string, view or optional string: its text; "(null)" if null
///     %@   list of strings: "(one, two)"
///     %@   byte buffer or optional byte buffer: "<1b 06>"
/// A per cent sign in an argument is printed as it is.
#define QUOR_LOG(logType, logLevel, ...)                                                 \
  do {                                                                                   \
    if (::quordalvane::LogWriter::isLogging() &&                                         \
        ::quordalvane::LogWriter::isTargetLogLevel(logLevel)) {                          \
      ::quordalvane::LogStatement(logType, logLevel, this, __FILE__, __LINE__, selector) \
          .write(::quordalvane::formatMessage(__VA_ARGS__));                             \
    }                                                                                    \
  } while (false)

namespace quordalvane {

/// A text, a list of texts, a byte buffer, or nothing.
using LogText = std::variant<std::monostate, std::string_view, std::span<const std::string>,
                             std::span<const std::uint8_t>>;

/// An argument of a message. A text, list or buffer is not copied: it must exist while the
/// statement runs. An integer is held as 64 bits. A C string or nullptr is held as an address; %p
/// prints the address and does not read the text.
using LogArgument = std::variant<std::uint64_t, double, const void*, const char*, LogText>;

/// Functions that convert an argument to a LogArgument.
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

enum class LogConversion { None, Int32, Uint32, Int64, Uint64, Real, Address, Text };

/// A piece of a format: some text and the conversion that follows it.
struct LogFormatPiece {
  std::string_view text;
  LogConversion conversion = LogConversion::None;
};

constexpr LogConversion conversionOf(char letter) {
  switch (letter) {
    case 'd':
      return LogConversion::Int32;
    case 'u':
      return LogConversion::Uint32;
    case 'f':
      return LogConversion::Real;
    case 'p':
      return LogConversion::Address;
    case '@':
      return LogConversion::Text;
    default:
      return LogConversion::None;
  }
}

constexpr LogConversion longConversionOf(char letter) {
  switch (letter) {
    case 'd':
      return LogConversion::Int64;
    case 'u':
      return LogConversion::Uint64;
    default:
      return LogConversion::None;
  }
}

/// Removes the beginning of `format`, up to and including its next conversion, and returns this
/// beginning. The conversion is `None` if no per cent sign is left, or if the letters after the
/// sign are not a conversion.
constexpr LogFormatPiece takePiece(std::string_view& format) {
  const std::size_t sign = format.find('%');
  if (sign == std::string_view::npos) {
    return {};
  }
  const std::string_view text = format.substr(0, sign);
  format.remove_prefix(sign + 1);
  const bool isLong = format.starts_with('l');
  format.remove_prefix(isLong ? 1 : 0);
  const char letter = format.empty() ? '\0' : format.front();
  format.remove_prefix(format.empty() ? 0 : 1);
  return {.text = text, .conversion = isLong ? longConversionOf(letter) : conversionOf(letter)};
}

template <typename Argument>
constexpr bool fitsConversion(LogConversion conversion) {
  using Referred = log_argument::Referred<Argument>;
  switch (conversion) {
    case LogConversion::None:
      return false;
    case LogConversion::Real:
      return std::is_same_v<Referred, double>;
    case LogConversion::Address:
      return std::is_same_v<Referred, const void*> || std::is_same_v<Referred, const char*>;
    case LogConversion::Text:
      return std::is_same_v<Referred, LogText> || std::is_same_v<Referred, const char*>;
    default:
      return std::is_same_v<Referred, std::uint64_t>;
  }
}

/// A format that is split into pieces: one piece for each argument, and `rest`, the text after the
/// last of these pieces. The compiler splits the format, so this costs no time at run time.
template <typename... Arguments>
struct LogFormatPieces {
  std::array<LogFormatPiece, sizeof...(Arguments)> pieces;
  std::string_view rest;
  bool fits = true;  // true if each argument has one conversion that fits the argument

  constexpr explicit LogFormatPieces(std::string_view format) {
    constexpr std::array<bool (*)(LogConversion), sizeof...(Arguments)> fitting{
        &fitsConversion<Arguments>...};
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      pieces[i] = takePiece(format);
      fits = fits && fitting[i](pieces[i].conversion);
    }
    rest = format;
    fits = fits && rest.find('%') == std::string_view::npos;
  }
};

/// A format whose conversions fit its arguments; a program with any other format does not compile.
template <typename... Arguments>
class LogFormat {
 public:
  consteval LogFormat(const char* text) : pieces_(text) {
    if (!pieces_.fits) {
      throw "the conversions of this format do not fit its arguments";
    }
  }

  std::span<const LogFormatPiece> pieces() const { return pieces_.pieces; }
  std::string_view rest() const { return pieces_.rest; }

 private:
  LogFormatPieces<Arguments...> pieces_;
};

/// Builds the message: the text of each piece and then the argument of this piece, and `rest` at
/// the end. The conversion of each piece must fit its argument.
std::string buildMessage(std::span<const LogFormatPiece> pieces, std::string_view rest,
                         std::span<const LogArgument> arguments);

template <typename... Arguments>
std::string formatMessage(const LogFormat<std::type_identity_t<Arguments>...>& format,
                          const Arguments&... arguments) {
  const std::array<LogArgument, sizeof...(Arguments)> referred{
      LogArgument(log_argument::refer(arguments))...};
  return buildMessage(format.pieces(), format.rest(), referred);
}

/// A log record without its message. The record is constructed before the message is built.
class LogStatement {
 public:
  LogStatement(ZKLogType type, std::int32_t level, const void* object, const char* file,
               std::int64_t line, const char* method);

  /// Completes the record with `message` and passes it to the logger.
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
