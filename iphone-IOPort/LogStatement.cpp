#include "iphone-IOPort/LogStatement.h"

#include <charconv>
#include <utility>

namespace quordalvane {
namespace {

constexpr std::string_view kNone = "(null)";
constexpr std::size_t kUsualNumber = 10;  // characters to make room for

template <typename... Format>
void appendNumber(std::string& out, auto value, Format... format) {
  std::array<char, 320> digits;  // of the longest double with six decimals, and then some
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, format...).ptr;
  out.append(digits.data(), end);
}

void appendInteger(std::string& out, std::string_view conversion, std::uint64_t bits) {
  if (conversion == "d") {
    appendNumber(out, static_cast<std::int32_t>(bits));
  } else if (conversion == "u") {
    appendNumber(out, static_cast<std::uint32_t>(bits));
  } else if (conversion == "ld") {
    appendNumber(out, static_cast<std::int64_t>(bits));
  } else {
    appendNumber(out, bits);
  }
}

void appendAddress(std::string& out, const void* address) {
  out += "0x";
  appendNumber(out, reinterpret_cast<std::uintptr_t>(address), 16);
}

void appendList(std::string& out, std::span<const std::string> texts) {
  out += '(';
  std::string_view separator;
  for (const std::string& text : texts) {
    out += std::exchange(separator, ", ");
    out += text;
  }
  out += ')';
}

void appendText(std::string& out, const LogText& text) {
  if (const auto* single = std::get_if<std::string_view>(&text)) {
    out += *single;
  } else if (const auto* list = std::get_if<std::span<const std::string>>(&text)) {
    appendList(out, *list);
  } else if (const auto* bytes = std::get_if<std::span<const std::uint8_t>>(&text)) {
    out += LogWriter::createByteArrayDescription(bytes->data(), bytes->size());
  } else {
    out += kNone;
  }
}

void appendArgument(std::string& out, std::string_view conversion, const LogArgument& argument) {
  if (const auto* bits = std::get_if<std::uint64_t>(&argument)) {
    appendInteger(out, conversion, *bits);
  } else if (const auto* real = std::get_if<double>(&argument)) {
    appendNumber(out, *real, std::chars_format::fixed, 6);
  } else if (const auto* address = std::get_if<const void*>(&argument)) {
    appendAddress(out, *address);
  } else if (const auto* text = std::get_if<LogText>(&argument)) {
    appendText(out, *text);
  } else if (const char* string = std::get<const char*>(argument); conversion == "p") {
    appendAddress(out, string);
  } else {
    out += string == nullptr ? kNone : std::string_view(string);
  }
}

/// What to reserve for a message: exact for texts, near for bytes and numbers.
std::size_t usualLength(std::string_view format, std::span<const LogArgument> arguments) {
  std::size_t length = format.size();
  for (const LogArgument& argument : arguments) {
    if (const auto* text = std::get_if<LogText>(&argument)) {
      const auto* single = std::get_if<std::string_view>(text);
      length += single != nullptr ? single->size() : 0;
    } else {
      length += kUsualNumber;
    }
  }
  return length;
}

}  // namespace

std::string buildMessage(std::string_view format, std::span<const LogArgument> arguments) {
  std::string message;
  message.reserve(usualLength(format, arguments));
  std::size_t used = 0;
  LogFormatPiece piece = nextPiece(format);
  for (; !piece.isLast; piece = nextPiece(piece.rest)) {
    message += piece.text;
    if (piece.conversion == "%") {
      message += '%';
    } else {
      appendArgument(message, piece.conversion, arguments[used++]);
    }
  }
  message += piece.text;
  LogWriter::countMessage();
  return message;
}

LogStatement::LogStatement(ZKLogType type, std::int32_t level, const void* object, const char* file,
                           std::int64_t line, const char* method)
    : type_(type),
      level_(level),
      writer_(LogWriter::sharedInstance()),
      file_(file),
      line_(line),
      method_(method) {
  appendAddress(object_, object);
}

void LogStatement::write(std::string message) && {
  writer_.outputLogAsync(type_, level_, std::move(object_), file_, line_, method_,
                         std::move(message));
}

}  // namespace quordalvane
