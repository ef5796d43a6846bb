#include "simulator/TextRendering.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "simulator/SymbolEncoding.h"
#include "simulator/Utf8.h"

namespace quordalvane::simulator {
namespace {

constexpr unsigned cell = 12;  // the width of a column in dots

// A feed is shown as empty lines, at most this number. A longer feed is described in words.
constexpr unsigned mostEmptyLines = 12;
constexpr unsigned dotsPerMillimetre = 8;

// Stands for the second column of a character that is two columns wide.
constexpr char32_t secondColumn = 0xffffffff;

std::u32string widened(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::string size(unsigned width, unsigned height) {
  return std::to_string(width) + " x " + std::to_string(height) + " dots";
}

class TextPage {
 public:
  explicit TextPage(unsigned paperWidth) : columns_(paperWidth / cell) {}

  void show(const Line& line) {
    if (isStripe(line)) {
      return addStripe(line);
    }
    endStripes();
    std::u32string canvas;
    std::size_t end = 0;  // the column after the last text
    unsigned endInDots = 0;
    for (const LineItem& item : line.items) {
      const std::u32string text = textOf(item);
      const std::size_t column = item.x == endInDots ? end : item.x / cell;
      if (canvas.size() < column + text.size()) {
        canvas.resize(column + text.size(), U' ');
      }
      canvas.replace(column, text.size(), text);
      end = column + text.size();
      endInDots = item.x + item.width();
    }
    write(canvas, line.place.alignment);
  }

  void show(const Symbol& symbol) {
    const std::string name = symbologyName(symbol.symbology);
    const auto encoded = encode(symbol);
    const std::string words = encoded ? name + " " + printable(readableData(symbol, *encoded))
                                      : "no " + name + " of " + printable(symbol.data);
    write(widened("[" + words + "]"), symbol.place.alignment);
  }

  void show(const Page& page) {
    for (const PageArea& area : page.areas) {
      text_ += renderText(*area.content);
    }
  }

  void show(const MoveTo&) {}

  void show(const Feed& feed) {
    const auto dots = static_cast<unsigned>(std::max(feed.dots, 0));
    const unsigned lines = (dots + lineSpacing / 2) / lineSpacing;
    if (lines > mostEmptyLines) {
      write(widened("[feed " + std::to_string(dots / dotsPerMillimetre) + " mm]"), Alignment::Left);
    } else {
      text_.append(lines, '\n');
    }
  }

  void show(const Cut& cut) {
    std::u32string line = cut.partial ? U"- - partial cut " : U"- - cut ";
    while (line.size() + 2 <= columns_) {
      line += U"- ";
    }
    write(line, Alignment::Left);
  }

  void addRemarks(const Paper& paper) {
    for (const std::string& remark : remarksOn(paper)) {
      text_ += "[" + remark + "]\n";
    }
  }

  void endStripes() {
    if (stripes_.height == 0) {
      return;
    }
    const Stripes done = std::exchange(stripes_, {});
    write(widened("[image " + size(done.width, done.height) + "]"), done.alignment);
  }

  std::string takeText() { return std::move(text_); }

 private:
  // An image that a job prints in stripes. Each stripe is a `Line` of its own. The text describes
  // all stripes together as one image.
  struct Stripes {
    unsigned width = 0;
    unsigned height = 0;
    Alignment alignment = Alignment::Left;
  };

  static bool isStripe(const Line& line) {
    return !line.items.empty() &&
           std::all_of(line.items.begin(), line.items.end(), [&](const LineItem& item) {
             return item.x == line.items[0].x && std::holds_alternative<Bitmap>(item.content);
           });
  }

  void addStripe(const Line& line) {
    const auto& dots = std::get<Bitmap>(line.items[0].content);
    if (dots.width != stripes_.width || line.place.alignment != stripes_.alignment) {
      endStripes();
    }
    stripes_ = {dots.width, stripes_.height + dots.height, line.place.alignment};
  }

  static std::u32string textOf(const LineItem& item) {
    if (const auto* run = std::get_if<TextRun>(&item.content)) {
      return run->style.wide ? inTwoColumns(run->text) : run->text;
    }
    const auto& dots = std::get<Bitmap>(item.content);
    return widened("[image " + size(dots.width, dots.height) + "]");
  }

  static std::u32string inTwoColumns(const std::u32string& characters) {
    std::u32string columns;
    for (const char32_t character : characters) {
      columns += {character, secondColumn};
    }
    return columns;
  }

  static std::string printable(std::string data) {
    for (char& c : data) {
      if (c < 0x20 || c > 0x7e) {
        c = '.';
      }
    }
    return data;
  }

  void write(std::u32string_view line, Alignment alignment) {
    line = line.substr(0, line.find_last_not_of(U' ') + 1);
    const std::size_t room = columns_ > line.size() ? columns_ - line.size() : 0;
    if (alignment == Alignment::Center) {
      text_.append(room / 2, ' ');
    } else if (alignment == Alignment::Right) {
      text_.append(room, ' ');
    }
    std::u32string characters(line);
    std::erase(characters, secondColumn);
    text_ += toUtf8(characters) + "\n";
  }

  std::size_t columns_;
  std::string text_;
  Stripes stripes_;
};

}  // namespace

std::string renderText(const Paper& paper) {
  TextPage page(paper.width());
  for (const PaperItem& item : paper.items()) {
    if (!std::holds_alternative<Line>(item)) {
      page.endStripes();
    }
    std::visit([&](const auto& what) { page.show(what); }, item);
  }
  page.endStripes();
  page.addRemarks(paper);
  return page.takeText();
}

std::vector<std::string> remarksOn(const Paper& paper) {
  std::vector<std::string> remarks;
  if (!paper.skipped().empty()) {
    std::string text = "not shown:";
    for (const auto& [command, times] : paper.skipped()) {
      text += " " + command + " (" + std::to_string(times) + ")";
    }
    remarks.push_back(std::move(text));
  }
  if (paper.goesOn()) {
    remarks.emplace_back("torn off: the paper grew too long, and the job continues on new paper");
  }
  return remarks;
}

}  // namespace quordalvane::simulator
