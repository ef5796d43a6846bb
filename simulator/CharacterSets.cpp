#include "simulator/CharacterSets.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <stdexcept>

#include "simulator/CodePages.h"
#include "text/Quoted.h"

namespace quordalvane::simulator {
namespace {

// The code-page numbers that most printers share.
constexpr std::string_view commonPages =
    "0:437 1:katakana 2:850 3:860 4:863 5:865 11:851 12:853 13:857 14:737 15:iso8859-7 16:1252 "
    "17:866 18:852 19:858 21:874 26:874 32:720 33:775 34:855 35:861 36:862 37:864 38:869 "
    "39:iso8859-2 40:iso8859-15 44:1125 45:1250 46:1251 47:1253 48:1254 49:1255 50:1256 51:1257 "
    "52:1258 53:kz1048";

// The code-page numbers of many small printers, which share one maker's controller.
constexpr std::string_view smallPages =
    "0:437 1:katakana 2:850 3:860 4:863 5:865 6:1251 7:866 15:862 16:1252 17:1253 18:852 19:858 "
    "22:864 23:iso8859-1 24:737 25:1257 26:874 27:720 28:855 29:857 30:1250 31:775 32:1254 33:1255 "
    "34:1256 35:1258 36:iso8859-2 37:iso8859-3 38:iso8859-4 39:iso8859-5 40:iso8859-6 "
    "41:iso8859-7 42:iso8859-8 43:iso8859-9 44:iso8859-15 46:856 47:874";

constexpr std::string_view multiByteNames[] = {"none", "shift-jis", "gb18030", "big5", "euc-kr"};

using Pages = std::array<std::string_view, 256>;

void setPage(Pages& pages, std::string_view pair) {
  unsigned number = 0;
  const char* const end = pair.data() + pair.size();
  const auto [stop, error] = std::from_chars(pair.data(), end, number);
  const bool hasNumber = error == std::errc() && stop != end && *stop == ':' && number < 256;
  const std::string_view name =
      hasNumber ? std::string_view(stop + 1, static_cast<std::size_t>(end - stop - 1)) : "";
  pages[hasNumber ? number : 0] = codePageNamed(name);
  if (!hasNumber || pages[number].empty()) {
    std::string names;
    for (const std::string& page : codePageNames()) {
      names.append(names.empty() ? "" : ", ").append(page);
    }
    throw std::invalid_argument(
        "codePages takes \"common\", \"small\" or pairs NUMBER:NAME such as 0:437+16:1252, with a "
        "NUMBER from 0 to 255 and one of these names: " +
        names + "; not " + inQuotes(pair));
  }
}

Pages parsed(std::string_view text) {
  Pages pages;
  while (!text.empty()) {
    const std::string_view pair = text.substr(0, text.find_first_of(" +"));
    if (!pair.empty()) {
      setPage(pages, pair);
    }
    text.remove_prefix(std::min(pair.size() + 1, text.size()));
  }
  return pages;
}

}  // namespace

CharacterSets::CharacterSets() {
  static const Pages common = parsed(commonPages);
  pages_ = common;
}

void CharacterSets::setPages(std::string_view text) {
  pages_ = parsed(text == "common" ? commonPages : text == "small" ? smallPages : text);
  pagesText_ = text;
}

void CharacterSets::setMultiByte(std::string_view name) {
  for (std::size_t i = 0; i < std::size(multiByteNames); ++i) {
    if (multiByteNames[i] == name) {
      multiByte = static_cast<MultiByte>(i);
      return;
    }
  }
  throw std::invalid_argument(
      "multiByte takes \"none\", \"shift-jis\", \"gb18030\", \"big5\" or \"euc-kr\", not " +
      inQuotes(name));
}

std::string_view nameOf(MultiByte encoding) {
  return multiByteNames[static_cast<std::size_t>(encoding)];
}

}  // namespace quordalvane::simulator
