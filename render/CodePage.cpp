#include "render/CodePage.h"

#include <glib.h>
#include <iconv.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

#include "render/RenderError.h"

namespace quordalvane::render {
namespace {

struct UsualPage {
  std::uint8_t number;
  std::string_view name;
};

// The numbers that most ESC/POS printers share, of the pages whose characters run from left to
// right and take one cell each. Text in other scripts is drawn.
constexpr UsualPage usualPages[] = {
    {0, "437"},   {2, "850"},   {3, "860"},   {4, "863"},        {5, "865"},         {13, "857"},
    {14, "737"},  {16, "1252"}, {17, "866"},  {18, "852"},       {19, "858"},        {33, "775"},
    {34, "855"},  {35, "861"},  {38, "869"},  {39, "iso8859-2"}, {40, "iso8859-15"}, {44, "1125"},
    {45, "1250"}, {46, "1251"}, {47, "1253"}, {48, "1254"},      {51, "1257"},
};

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
                    "; a code page is a number such as 16, or NUMBER:NAME for a printer that "
                    "counts in another way. Usual are " +
                    usualNumbers());
}

std::uint8_t numberIn(std::string_view text) {
  std::uint8_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) {
    fail("a code page's number is from 0 to 255");
  }
  return number;
}

std::string_view usualName(std::uint8_t number) {
  const auto* const found = std::ranges::find(usualPages, number, &UsualPage::number);
  if (found == std::end(usualPages)) {
    fail("the number " + std::to_string(number) + " has no usual meaning");
  }
  return found->name;
}

bool isPrintableAscii(std::string_view line) {
  return std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; });
}

std::vector<std::uint8_t> bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace

// The system's converter from UTF-8.
struct CodePage::Converter {
  explicit Converter(std::string_view page) : handle(open(page)) {}
  ~Converter() { ::iconv_close(handle); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  static iconv_t open(std::string_view page) {
    const bool isNumber = !page.empty() && page.front() >= '0' && page.front() <= '9';
    if (isNumber || page.starts_with("iso8859-")) {
      iconv_t handle = ::iconv_open(((isNumber ? "CP" : "") + std::string(page)).c_str(), "UTF-8");
      // A pointer of all ones means that the library knows no such page.
      if (reinterpret_cast<std::ptrdiff_t>(handle) != -1) {
        return handle;
      }
    }
    fail("this system knows no code page of that name");
  }

  std::optional<std::vector<std::uint8_t>> convert(std::string line) const {
    std::vector<std::uint8_t> bytes(line.size());
    char* from = line.data();
    std::size_t left = line.size();
    char* to = reinterpret_cast<char*>(bytes.data());
    std::size_t room = bytes.size();
    ::iconv(handle, nullptr, nullptr, nullptr, nullptr);
    // Anything but 0 is an error, or a character that was replaced by one like it.
    if (::iconv(handle, &from, &left, &to, &room) != 0) {
      return std::nullopt;
    }
    bytes.resize(bytes.size() - room);
    return bytes;
  }

  iconv_t handle;
};

CodePage::CodePage() = default;

CodePage::CodePage(std::string_view text) {
  const std::size_t colon = text.find(':');
  number_ = numberIn(text.substr(0, colon));
  const std::string_view name =
      colon == std::string_view::npos ? usualName(*number_) : text.substr(colon + 1);
  converter_ = std::make_unique<Converter>(name);
}

CodePage::~CodePage() = default;
CodePage::CodePage(CodePage&&) noexcept = default;
CodePage& CodePage::operator=(CodePage&&) noexcept = default;

std::optional<std::vector<std::uint8_t>> CodePage::encoded(const std::string& line) {
  if (isPrintableAscii(line)) {
    return bytesOf(line);
  }
  if (converter_ == nullptr) {
    return std::nullopt;
  }
  const std::unique_ptr<char, void (*)(void*)> composed(
      g_utf8_normalize(line.data(), static_cast<gssize>(line.size()), G_NORMALIZE_NFC), g_free);
  auto bytes = converter_->convert(composed.get());
  const bool isByteEach =
      bytes && bytes->size() == static_cast<std::size_t>(g_utf8_strlen(composed.get(), -1));
  return isByteEach ? std::move(bytes) : std::nullopt;
}

}  // namespace quordalvane::render
