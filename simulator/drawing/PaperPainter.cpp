#include "simulator/drawing/PaperPainter.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "simulator/Utf8.h"
#include "simulator/drawing/TextDrawing.h"

namespace quordalvane::simulator {
namespace {

const TextStyle plain{};

std::uint8_t darknessOf(bool grey) {
  return grey ? Plane::grey : Plane::ink;
}

class Painter {
 public:
  Painter(Plane& plane, unsigned top) : plane_(plane), top_(static_cast<int>(top)) {}

  void paint(const PlacedItem& placed) {
    const int y = placed.top - top_;
    if (y >= static_cast<int>(plane_.height()) || y + static_cast<int>(placed.height) <= 0) {
      return;
    }
    if (const auto* line = std::get_if<Line>(placed.item)) {
      paint(*line, y);
    } else if (const auto* symbol = std::get_if<Symbol>(placed.item)) {
      paint(*symbol, placed.symbol, y);
    } else if (const auto* page = std::get_if<Page>(placed.item)) {
      paint(*page, placed.areas, y);
    } else if (std::holds_alternative<Cut>(*placed.item)) {
      paintPartialCut(y, placed.height);
    }
  }

 private:
  int leftOf(unsigned width, const Place& place) const {
    const unsigned rest = plane_.width() - std::min(place.left, plane_.width());
    const unsigned room = place.room == 0 ? rest : std::min(place.room, rest);
    const unsigned spare = room > width ? room - width : 0;
    const unsigned shift = place.alignment == Alignment::Left     ? 0
                           : place.alignment == Alignment::Center ? spare / 2
                                                                  : spare;
    return static_cast<int>(place.left + shift);
  }

  void paint(const Line& line, int y) {
    const unsigned width = line.width();
    if (!line.upsideDown) {
      return paintItems(plane_, line, leftOf(width, line.place), y);
    }
    Plane upright(std::min(width, plane_.width()), line.contentHeight());
    paintItems(upright, line, 0, 0);
    Place mirrored = line.place;
    mirrored.alignment = static_cast<Alignment>(2 - static_cast<int>(line.place.alignment));
    plane_.draw(upright.turned(2), leftOf(upright.width(), mirrored), y, Plane::ink);
  }

  static void paintItems(Plane& plane, const Line& line, int left, int y) {
    for (const LineItem& item : line.items) {
      const int x = left + static_cast<int>(item.x);
      const int top = y + static_cast<int>(line.contentHeight() - item.height());
      if (const auto* dots = std::get_if<Bitmap>(&item.content)) {
        plane.dots(*dots, x, top, 1, 1, darknessOf(dots->grey));
      } else {
        paintText(plane, std::get<TextRun>(item.content), x, top);
      }
    }
  }

  static void paintText(Plane& plane, const TextRun& run, int x, int y) {
    const TextStyle& style = run.style;
    const auto width = static_cast<unsigned>(run.text.size()) * style.cellWidth();
    const std::uint8_t dark = darknessOf(style.grey);
    if (style.inverse) {
      plane.fill(x, y, width, style.cellHeight(), dark);
    }
    const std::uint8_t letters = style.inverse ? Plane::bare : dark;
    if (style.underline > 0) {
      plane.fill(x, y + static_cast<int>(style.cellHeight()) - 2, width, style.underline, letters);
    }
    drawText(plane, run.text, style, x, y, letters);
  }

  void paint(const Symbol& symbol, const std::optional<EncodedSymbol>& encoded, int y) {
    y += static_cast<int>(symbolSpace);
    if (!encoded) {
      const std::string words = "[no " + symbologyName(symbol.symbology) + " of this data]";
      const auto width = static_cast<unsigned>(words.size()) * plain.cellWidth();
      return drawText(plane_, fromUtf8(words), plain, leftOf(width, symbol.place), y, Plane::grey);
    }
    const unsigned width = encoded->modules.width * symbol.moduleWidth;
    const int left = leftOf(width, symbol.place);
    const int middle = left + static_cast<int>(width / 2);
    if (symbol.textAbove) {
      y = paintBeside(symbol, *encoded, middle, y);
    }
    y = paintModules(symbol, *encoded, left, y);
    if (symbol.textBelow) {
      paintBeside(symbol, *encoded, middle, y + static_cast<int>(symbolSpace));
    }
  }

  int paintBeside(const Symbol& symbol, const EncodedSymbol& encoded, int middle, int y) {
    TextStyle style;
    style.smallFont = symbol.smallText;
    const std::u32string text = fromUtf8(encoded.text);
    const auto width = static_cast<int>(text.size() * style.cellWidth());
    drawText(plane_, text, style, std::max(0, middle - width / 2), y, Plane::ink);
    return y + static_cast<int>(plain.cellHeight() + symbolSpace);
  }

  int paintModules(const Symbol& symbol, const EncodedSymbol& encoded, int left, int y) {
    const bool isMaxiCode = symbol.symbology == Symbology::MaxiCode;
    const int begin = y;
    for (unsigned row = 0; row < encoded.modules.height; ++row) {
      const unsigned height = encoded.rowHeightIn(symbol, row);
      const int shift = isMaxiCode && row % 2 != 0 ? static_cast<int>(symbol.moduleWidth / 2) : 0;
      for (unsigned x = 0; x < encoded.modules.width; ++x) {
        if (encoded.modules.black(x, row)) {
          plane_.fill(left + shift + static_cast<int>(x * symbol.moduleWidth), y,
                      symbol.moduleWidth, height, Plane::ink);
        }
      }
      y += static_cast<int>(height);
    }
    if (isMaxiCode) {
      paintRings(symbol, left, begin);
    }
    return y;
  }

  // Draws the three rings in the middle, which the encoder omits.
  void paintRings(const Symbol& symbol, int left, int y) {
    constexpr double edges[] = {0.58, 1.34, 2.11, 2.88, 3.64, 4.40};  // the rings' radii in modules
    const double module = symbol.moduleWidth;
    const double middleX = left + 14.5 * module;
    const double middleY = y + 16.5 * symbol.rowHeight;
    const int reach = static_cast<int>(edges[5] * module) + 1;
    for (int row = static_cast<int>(middleY) - reach; row <= middleY + reach; ++row) {
      for (int x = static_cast<int>(middleX) - reach; x <= middleX + reach; ++x) {
        const double distance = std::hypot(x - middleX, row - middleY) / module;
        const auto passed = std::upper_bound(std::begin(edges), std::end(edges), distance);
        if ((passed - std::begin(edges)) % 2 == 1) {
          plane_.fill(x, row, 1, 1, Plane::ink);
        }
      }
    }
  }

  void paint(const Page& page, const std::vector<std::shared_ptr<PaperLayout>>& areas, int y) {
    for (std::size_t i = 0; i < areas.size(); ++i) {
      const PageArea& area = page.areas[i];
      const bool isSideways = area.direction % 2 != 0;
      Plane content(isSideways ? area.height : area.width,
                    std::min(isSideways ? area.width : area.height, areas[i]->bottom() + 1));
      simulator::paint(content, *areas[i], 0);
      Plane whole(content.width(), isSideways ? area.width : area.height);
      whole.draw(content, 0, 0, Plane::ink);
      plane_.draw(whole.turned(4 - area.direction), static_cast<int>(area.x),
                  y + static_cast<int>(area.y), Plane::ink);
    }
  }

  // Draws a dashed line, because a partial cut leaves the pieces connected.
  void paintPartialCut(int y, unsigned height) {
    constexpr unsigned dash = 6;
    for (unsigned x = 0; x < plane_.width(); x += 2 * dash) {
      plane_.fill(static_cast<int>(x), y + static_cast<int>(height / 2), dash, 1, Plane::grey);
    }
  }

  Plane& plane_;
  int top_;
};

}  // namespace

void paint(Plane& plane, const PaperLayout& layout, unsigned top) {
  Painter painter(plane, top);
  for (const PlacedItem& placed : layout.items()) {
    painter.paint(placed);
  }
}

}  // namespace quordalvane::simulator
