#include "render/TestPage.h"

#include <string>
#include <utility>
#include <vector>

#include "render/TextPrinting.h"

namespace quordalvane::render {
namespace {

constexpr unsigned firstByte = 0x80;
constexpr unsigned endOfBytes = 0x100;
constexpr unsigned bytesInLine = 16;

// Returns a line with the characters from `first` on; a byte without a character becomes a blank.
std::string lineFrom(unsigned first, const CodePage& page) {
  constexpr auto digits = "0123456789ABCDEF";
  std::string line{digits[first >> 4U], '0', ' ', ' '};
  for (unsigned byte = first; byte < first + bytesInLine; ++byte) {
    const std::string character = page.character(static_cast<std::uint8_t>(byte));
    line += character.empty() ? " " : character;
  }
  return line;
}

}  // namespace

void printTestPage(CodePage page, unsigned width, const Output& output) {
  std::vector<std::string> lines;
  for (unsigned first = firstByte; first < endOfBytes; first += bytesInLine) {
    lines.push_back(lineFrom(first, page));
  }
  const std::string title = "Code page " + std::to_string(page.number().value_or(0));
  TextPrinting printing(width, std::move(page), output);
  printing.add(title +
               "\n\nEach line is printed twice:\nas the printer's letters, and\n"
               "below as a picture.\nBoth must be the same.\n\n");
  for (const std::string& line : lines) {
    printing.add(line + "\n");
    printing.addDrawn(line);
  }
  printing.end();
}

}  // namespace quordalvane::render
