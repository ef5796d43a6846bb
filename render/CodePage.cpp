#include "render/CodePage.h"

#include <glib.h>
#include <iconv.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "render/RenderError.h"
#include "text/Number.h"

namespace quordalvane::render {
namespace {

struct UsualPage {
  std::uint8_t number;
  std::string_view name;
};

// The page numbers that most ESC/POS printers share. The list contains only pages whose characters
// run from left to right and take one cell each. Text in a script that has no such page is sent as
// a picture.
constexpr UsualPage usualPages[] = {
    {0, "437"},   {2, "850"},   {3, "860"},   {4, "863"},        {5, "865"},         {13, "857"},
    {14, "737"},  {16, "1252"}, {17, "866"},  {18, "852"},       {19, "858"},        {33, "775"},
    {34, "855"},  {35, "861"},  {38, "869"},  {39, "iso8859-2"}, {40, "iso8859-15"}, {44, "1125"},
    {45, "1250"}, {46, "1251"}, {47, "1253"}, {48, "1254"},      {51, "1257"},
};

constexpr std::size_t longestCharacter = 4;  // bytes in UTF-8

std::string usualNumbers() {
  std::string text;
  for (const UsualPage& page : usualPages) {
    text.append(text.empty() ? "" : ", ").append(std::to_string(page.number) + ":");
    text.append(page.name);
  }
  return text;
}

[[noreturn]] void fail(const std::string& why) {
  throw RenderError(why +
                    "; a code page is one of the usual numbers, such as 16, or NUMBER:NAME if the "
                    "printer gives it another number. The usual numbers are " +
                    usualNumbers());
}

std::uint8_t pageNumber(std::string_view text) {
  const auto number = numberIn<std::uint8_t>(text);
  if (!number) {
    fail("the number of a code page must be from 0 to 255");
  }
  return *number;
}

std::string_view usualName(std::uint8_t number) {
  const auto* const found = std::ranges::find(usualPages, number, &UsualPage::number);
  if (found == std::end(usualPages)) {
    fail("the number " + std::to_string(number) + " is not one of the usual numbers");
  }
  return found->name;
}

bool isPrintableAscii(std::string_view line) {
  return std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; });
}

bool isRightToLeft(gunichar character) {
  const GUnicodeScript script = g_unichar_get_script(character);
  return script == G_UNICODE_SCRIPT_HEBREW || script == G_UNICODE_SCRIPT_ARABIC;
}

// Returns true if the printer, which places characters from left to right, would print the text in
// the wrong order. Only Hebrew and Arabic have code pages of this kind.
bool hasRightToLeft(const char* text) {
  for (; *text != '\0'; text = g_utf8_next_char(text)) {
    if (isRightToLeft(g_utf8_get_char(text))) {
      return true;
    }
  }
  return false;
}

// Converts between a code page and UTF-8, using the system's converter.
class Conversion {
 public:
  Conversion(const std::string& to, const std::string& from)
      : handle_(::iconv_open(to.c_str(), from.c_str())) {
    // The library returns a pointer whose bits are all 1 if it does not know the page.
    if (reinterpret_cast<std::ptrdiff_t>(handle_) == -1) {
      fail("this system knows no code page of that name");
    }
  }
  ~Conversion() { ::iconv_close(handle_); }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  // Returns the converted text; null if the target set lacks one of the characters.
  std::optional<std::string> operator()(std::string text) const {
    std::string converted(text.size() * longestCharacter, '\0');
    char* from = text.data();
    std::size_t left = text.size();
    char* to = converted.data();
    std::size_t room = converted.size();
    ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    // A result other than 0 means an error, or that a character was replaced by a similar one.
    if (::iconv(handle_, &from, &left, &to, &room) != 0) {
      return std::nullopt;
    }
    converted.resize(converted.size() - room);
    return converted;
  }

 private:
  iconv_t handle_;
};

// Returns the system's name of a page.
std::string systemName(std::string_view page) {
  const bool isNumber = !page.empty() && page.front() >= '0' && page.front() <= '9';
  if (!isNumber && !page.starts_with("iso8859-")) {
    fail("this system knows no code page of that name");
  }
  return (isNumber ? "CP" : "") + std::string(page);
}

}  // namespace

struct CodePage::Converter {
  explicit Converter(const std::string& page) : toPage(page, "UTF-8"), toUtf8("UTF-8", page) {}

  const Conversion toPage;
  const Conversion toUtf8;
};

CodePage::CodePage() = default;

CodePage::CodePage(std::string_view text) {
  const std::size_t colon = text.find(':');
  number_ = pageNumber(text.substr(0, colon));
  const std::string_view name =
      colon == std::string_view::npos ? usualName(*number_) : text.substr(colon + 1);
  converter_ = std::make_unique<Converter>(systemName(name));
}

CodePage::~CodePage() = default;
CodePage::CodePage(CodePage&&) noexcept = default;
CodePage& CodePage::operator=(CodePage&&) noexcept = default;

std::optional<std::vector<std::uint8_t>> CodePage::encoded(const std::string& line) const {
  if (isPrintableAscii(line)) {
    return std::vector<std::uint8_t>(line.begin(), line.end());
  }
  if (converter_ == nullptr) {
    return std::nullopt;
  }
  const std::unique_ptr<char, void (*)(void*)> composed(
      g_utf8_normalize(line.data(), static_cast<gssize>(line.size()), G_NORMALIZE_NFC), g_free);
  if (hasRightToLeft(composed.get())) {
    return std::nullopt;
  }
  const auto bytes = converter_->toPage(composed.get());
  if (!bytes || bytes->size() != static_cast<std::size_t>(g_utf8_strlen(composed.get(), -1))) {
    return std::nullopt;
  }
  return std::vector<std::uint8_t>(bytes->begin(), bytes->end());
}

std::string CodePage::character(std::uint8_t byte) const {
  const auto text = converter_ == nullptr
                        ? std::nullopt
                        : converter_->toUtf8(std::string(1, static_cast<char>(byte)));
  const bool isPrinted = text && g_unichar_isprint(g_utf8_get_char(text->c_str())) != 0;
  return isPrinted ? *text : "";
}

}  // namespace quordalvane::render
