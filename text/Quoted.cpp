#include "text/Quoted.h"

#include <cstddef>

#include "text/PrintableText.h"

namespace quordalvane {

std::string printable(std::string_view text) {
  std::string result;
  appendPrintable(result, text);
  return result;
}

std::string inQuotes(std::string_view text) {
  constexpr std::size_t longest = 60;
  return '"' + printable(text.substr(0, longest)) + (text.size() > longest ? "...\"" : "\"");
}

}  // namespace quordalvane
