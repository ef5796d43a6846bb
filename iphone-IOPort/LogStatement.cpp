#include "iphone-IOPort/LogStatement.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "text/Hex.h"

namespace quordalvane {
namespace {

/// Builds a message in a fixed buffer. A message that fits into this buffer needs only one
/// allocation, for the finished text.
class MessageText {
 public:
  void append(std::string_view text) {
    if (text.size() > buffer_.size() - used_) {
      spill();
      if (text.size() > buffer_.size()) {
        spilled_ += text;
        return;
      }
    }
    std::copy(text.begin(), text.end(), end());
    used_ += text.size();
  }

  template <typename... Format>
  void appendNumber(auto value, Format... format) {
    if (buffer_.size() - used_ < longestNumber) {
      spill();
    }
    const char* behind = std::to_chars(end(), end() + longestNumber, value, format...).ptr;
    used_ += static_cast<std::size_t>(behind - end());
  }

  std::string take() && {
    if (spilled_.empty()) {
      return {buffer_.data(), used_};
    }
    spill();
    return std::move(spilled_);
  }

 private:
  static constexpr std::size_t longestNumber =
      317;  // the length of the lowest double, written with six decimals

  char* end() noexcept { return buffer_.data() + used_; }

  void spill() {
    spilled_.append(buffer_.data(), used_);
    used_ = 0;
  }

  std::array<char, 512> buffer_;
  std::size_t used_ = 0;
  std::string spilled_;
};

/// The text of an address: 0x and its hexadecimal digits. The digits are written from the last to
/// the first, because their number is unknown. Every log statement needs this text, so speed
/// matters.
class AddressText {
 public:
  explicit AddressText(const void* address) {
    auto rest = reinterpret_cast<std::uintptr_t>(address);
    do {
      *--begin_ = hexDigits[rest & 0xFU];
      rest >>= 4U;
    } while (rest != 0);
    *--begin_ = 'x';
    *--begin_ = '0';
  }
  AddressText(const AddressText&) = delete;
  AddressText& operator=(const AddressText&) = delete;

  std::string_view view() const {
    return {begin_, static_cast<std::size_t>(buffer_.data() + buffer_.size() - begin_)};
  }

 private:
  std::array<char, 2 + 2 * sizeof(std::uintptr_t)> buffer_;
  char* begin_ = buffer_.data() + buffer_.size();
};

void appendList(MessageText& message, std::span<const std::string> texts) {
  message.append("(");
  std::string_view separator;
  for (const std::string& text : texts) {
    message.append(std::exchange(separator, ", "));
    message.append(text);
  }
  message.append(")");
}

void appendText(MessageText& message, const LogText& text) {
  if (const auto* single = std::get_if<std::string_view>(&text)) {
    message.append(*single);
  } else if (const auto* list = std::get_if<std::span<const std::string>>(&text)) {
    appendList(message, *list);
  } else if (const auto* bytes = std::get_if<std::span<const std::uint8_t>>(&text)) {
    message.append(LogWriter::createByteArrayDescription(bytes->data(), bytes->size()));
  } else {
    message.append("(null)");
  }
}

LogText textOf(const LogArgument& argument) {
  if (const auto* text = std::get_if<LogText>(&argument)) {
    return *text;
  }
  const char* string = std::get<const char*>(argument);
  return string == nullptr ? LogText() : LogText(string);
}

const void* addressOf(const LogArgument& argument) {
  const auto* string = std::get_if<const char*>(&argument);
  return string != nullptr ? *string : std::get<const void*>(argument);
}

void appendArgument(MessageText& message, LogConversion conversion, const LogArgument& argument) {
  switch (conversion) {
    case LogConversion::Int32:
      return message.appendNumber(static_cast<std::int32_t>(std::get<std::uint64_t>(argument)));
    case LogConversion::Uint32:
      return message.appendNumber(static_cast<std::uint32_t>(std::get<std::uint64_t>(argument)));
    case LogConversion::Int64:
      return message.appendNumber(static_cast<std::int64_t>(std::get<std::uint64_t>(argument)));
    case LogConversion::Uint64:
      return message.appendNumber(std::get<std::uint64_t>(argument));
    case LogConversion::Real:
      return message.appendNumber(std::get<double>(argument), std::chars_format::fixed, 6);
    case LogConversion::Address:
      return message.append(AddressText(addressOf(argument)).view());
    case LogConversion::Text:
      return appendText(message, textOf(argument));
    case LogConversion::None:
      break;  // `None`: no argument fits
  }
}

}  // namespace

std::string buildMessage(std::span<const LogFormatPiece> pieces, std::string_view rest,
                         std::span<const LogArgument> arguments) {
  MessageText message;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    message.append(pieces[i].text);
    appendArgument(message, pieces[i].conversion, arguments[i]);
  }
  message.append(rest);
  return std::move(message).take();
}

LogStatement::LogStatement(ZKLogType type, std::int32_t level, const void* object, const char* file,
                           std::int64_t line, const char* method)
    : type_(type),
      level_(level),
      writer_(LogWriter::sharedInstance()),
      object_(AddressText(object).view()),
      file_(file),
      line_(line),
      method_(method) {}

void LogStatement::write(std::string&& message) && {
  writer_.outputLogAsyncWithLogType(type_, level_, std::move(object_), file_, line_, method_,
                                    std::move(message));
}

}  // namespace quordalvane
