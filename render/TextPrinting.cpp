#include "render/TextPrinting.h"

#include <algorithm>
#include <utility>

namespace quordalvane::render {
namespace {

constexpr unsigned letterWidth = 12;
constexpr std::uint8_t lineFeed = '\n';

// Returns how many of the letters fit into a row of `columns` columns. The row ends at its last
// blank, if it contains one.
std::size_t lettersInRow(ByteView letters, std::size_t columns) {
  if (letters.size() <= columns) {
    return letters.size();
  }
  std::size_t end = columns;
  while (end > 0 && letters[end] != ' ') {
    --end;
  }
  return end == 0 ? columns : end;
}

}  // namespace

TextPrinting::TextPrinting(unsigned width, CodePage codePage, Output output)
    : columns_(width / letterWidth),
      codePage_(std::move(codePage)),
      output_(std::move(output)),
      drawing_(width),
      bands_(width, output_, RasterBands::Top::KeepWhite),
      lines_([this](const std::string& line) { print(line); }) {}

void TextPrinting::end() {
  lines_.end();
  bands_.end();
}

void TextPrinting::print(const std::string& line) {
  if (const auto letters = codePage_.encoded(line)) {
    if (std::exchange(isDrawing_, false)) {
      bands_.flush();
    }
    printText(*letters);
  } else {
    addDrawn(line);
  }
}

void TextPrinting::addDrawn(const std::string& line) {
  isDrawing_ = true;
  drawing_.draw(line, [this](ByteView row) { bands_.add(row); });
}

void TextPrinting::printText(ByteView letters) {
  selectCodePage();
  do {
    const std::size_t count = lettersInRow(letters, columns_);
    output_(letters.first(count));
    output_({&lineFeed, 1});
    const bool endsAtBlank = count < letters.size() && letters[count] == ' ';
    letters = letters.subspan(count + (endsAtBlank ? 1 : 0));
  } while (!letters.empty());
}

// Selects the code page, and switches off the mode in which a printer for Chinese or Japanese takes
// two bytes for one character.
void TextPrinting::selectCodePage() {
  if (codePage_.number() && !std::exchange(isPageSelected_, true)) {
    const std::uint8_t select[] = {0x1c, 0x2e, 0x1b, 0x74, *codePage_.number()};
    output_(select);
  }
}

}  // namespace quordalvane::render
