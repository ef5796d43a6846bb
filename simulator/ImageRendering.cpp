#include "simulator/ImageRendering.h"

#include <algorithm>
#include <string>
#include <utility>

#include "simulator/SymbolEncoding.h"
#include "simulator/TextRendering.h"
#include "simulator/Utf8.h"

namespace quordalvane::simulator {
namespace {

constexpr std::uint32_t tableColour = 0xd9dde1;
constexpr std::uint32_t paperColour = 0xfdfdfb;
constexpr std::uint32_t shadow = 0xb9bec4;
constexpr std::uint32_t inkColour = 0x1c1c1e;
constexpr std::uint32_t remarkSize = 0x8a8f98;

constexpr unsigned tableMargin = 16;  // table that shows around the paper
constexpr unsigned sideMargin = 32;   // paper beside the print
constexpr unsigned endMargin = 20;    // paper above the first line and below the last of a piece
constexpr unsigned tooth = 6;         // of a torn edge
constexpr unsigned gap = 24;          // between two pieces
constexpr unsigned partialCut = 16;
constexpr unsigned symbolSpace = 6;  // above and below a symbol, and between it and its text

const TextStyle plainBytes{};

struct Placed {
  unsigned y;
  const PaperItem* item;
};

/// A stretch of paper from one cut to the next.
struct Piece {
  unsigned top;
  unsigned bottom;
  bool cutBelow;
};

unsigned lineHeight(const Barcode& barcode) {
  const unsigned texts = (barcode.textAbove ? 1U : 0U) + (barcode.textBelow ? 1U : 0U);
  return barcode.height + texts * (plainBytes.cellHeight() + symbolSpace) + 2 * symbolSpace;
}

unsigned qrHeight(const QrCode& code) {
  const auto symbol = encode(code);
  return (symbol ? symbol->modules.height * code.moduleSize : plainBytes.cellHeight()) +
         2 * symbolSpace;
}

struct Height {
  unsigned operator()(const Line& line) const { return line.height(); }
  unsigned operator()(const Barcode& barcode) const { return lineHeight(barcode); }
  unsigned operator()(const QrCode& code) const { return qrHeight(code); }
  unsigned operator()(const Feed& feed) const { return feed.dots; }
  unsigned operator()(const Cut&) const { return partialCut; }
};

bool isFullCut(const PaperItem& item) {
  const auto* cut = std::get_if<Cut>(&item);
  return cut != nullptr && !cut->partial;
}

// The parts that the paper does not show are listed below it.
std::vector<std::string> remarkLines(const Paper& paper) {
  const std::size_t columns = paper.width() / plainBytes.cellWidth();
  std::vector<std::string> lines;
  for (const std::string& remark : remarksOn(paper)) {
    for (std::size_t begin = 0; begin < remark.size(); begin += columns) {
      lines.push_back(remark.substr(begin, columns));
    }
  }
  return lines;
}

/// The place of each part.
class Layout {
 public:
  explicit Layout(const Paper& paper) : remarks_(remarkLines(paper)) {
    for (const PaperItem& item : paper.items()) {
      if (y_ >= longestPicture) {
        endsEarly_ = true;
        break;
      }
      if (isFullCut(item)) {
        endPiece(true);
      } else {
        place(item);
      }
    }
    if (endsEarly_) {
      y_ += plainBytes.cellHeight();
    }
    endPiece(false);
  }

  const std::vector<Placed>& placed() const { return placed_; }
  const std::vector<Piece>& pieces() const { return pieces_; }
  bool endsEarly() const { return endsEarly_; }

  const std::vector<std::string>& remarks() const { return remarks_; }
  unsigned remarksTop() const {
    const unsigned paperEnd = pieces_.empty() ? y_ : pieces_.back().bottom;
    return paperEnd + (remarks_.empty() ? 0 : symbolSpace);
  }

  unsigned height() const {
    const auto lines = static_cast<unsigned>(remarks_.size());
    return remarksTop() + lines * plainBytes.cellHeight() + tableMargin;
  }

 private:
  void place(const PaperItem& item) {
    placed_.push_back({y_, &item});
    y_ += std::min(std::visit(Height{}, item), longestPicture - y_);
  }

  void endPiece(bool cut) {
    const bool empty = y_ == begin_ + endMargin;
    if (empty) {
      return;
    }
    pieces_.push_back({begin_, y_ + endMargin, cut});
    begin_ = y_ + endMargin + gap;
    y_ = begin_ + endMargin;
  }

  std::vector<std::string> remarks_;
  std::vector<Placed> placed_;
  std::vector<Piece> pieces_;
  unsigned begin_ = tableMargin;
  unsigned y_ = tableMargin + endMargin;
  bool endsEarly_ = false;
};

class Painter {
 public:
  Painter(const Paper& paper, const Layout& layout)
      : paperWidth_(paper.width()),
        canvas_(paper.width() + 2 * (sideMargin + tableMargin), layout.height(), tableColour) {
    for (const Piece& piece : layout.pieces()) {
      paintPiece(piece);
    }
    canvas_.clipTo(leftEdge, 0, paper.width(), layout.height());
    for (const Placed& placed : layout.placed()) {
      std::visit([&](const auto& item) { paint(item, placed.y); }, *placed.item);
    }
    if (layout.endsEarly()) {
      remark("... and the paper continues", Alignment::Left,
             layout.pieces().back().bottom - endMargin - plainBytes.cellHeight());
    }
    unsigned y = layout.remarksTop();
    for (const std::string& line : layout.remarks()) {
      remark(line, Alignment::Left, y);
      y += plainBytes.cellHeight();
    }
  }

  const Canvas& canvas() const { return canvas_; }

 private:
  static constexpr unsigned leftEdge = tableMargin + sideMargin;

  // Torn above and below, but for the end that is still in the printer.
  std::vector<Canvas::Point> outline(const Piece& piece, double shift) const {
    const double left = tableMargin + shift;
    const unsigned teeth = (paperWidth_ + 2 * sideMargin) / tooth;
    const double step = static_cast<double>(paperWidth_ + 2 * sideMargin) / teeth;
    std::vector<Canvas::Point> corners;
    for (unsigned i = 0; i <= teeth; ++i) {
      corners.push_back({left + i * step, piece.top + shift + (i % 2 == 0 ? 0 : tooth)});
    }
    for (unsigned i = teeth + 1; i-- > 0;) {
      const bool notch = piece.cutBelow && i % 2 != 0;
      corners.push_back({left + i * step, piece.bottom + shift - (notch ? tooth : 0)});
    }
    return corners;
  }

  void paintPiece(const Piece& piece) {
    canvas_.fillPolygon(outline(piece, 2), shadow);
    canvas_.fillPolygon(outline(piece, 0), paperColour);
  }

  double leftOf(unsigned width, Alignment alignment) const {
    const unsigned room = paperWidth_ > width ? paperWidth_ - width : 0;
    if (alignment == Alignment::Left) {
      return leftEdge;
    }
    return leftEdge + (alignment == Alignment::Center ? room / 2 : room);
  }

  void remark(const std::string& text, Alignment alignment, double y) {
    const std::u32string characters = fromUtf8(text);
    const auto width = static_cast<unsigned>(characters.size()) * plainBytes.cellWidth();
    canvas_.text(characters, plainBytes, leftOf(width, alignment), y, remarkSize);
  }

  void paint(const Line& line, unsigned y) {
    const double left = leftOf(line.width(), line.alignment);
    for (const LineItem& item : line.items) {
      const double top = y + line.contentHeight() - item.height();
      if (const auto* dots = std::get_if<Bitmap>(&item.content)) {
        canvas_.dots(*dots, left + item.x, top, 1, 1, inkColour);
      } else {
        paint(std::get<TextRun>(item.content), left + item.x, top);
      }
    }
  }

  void paint(const TextRun& run, double x, double y) {
    const TextStyle& style = run.style;
    const double width = static_cast<double>(run.text.size()) * style.cellWidth();
    if (style.inverse) {
      canvas_.fill(x, y, width, style.cellHeight(), inkColour);
    }
    const std::uint32_t ink = style.inverse ? paperColour : inkColour;
    if (style.underline > 0) {
      canvas_.fill(x, y + style.cellHeight() - 2, width, style.underline, ink);
    }
    canvas_.text(run.text, style, x, y, ink);
  }

  void paint(const Barcode& barcode, unsigned y) {
    const auto symbol = encode(barcode);
    if (!symbol) {
      return remark("[no " + symbologyName(barcode.symbology) + " of this data]", barcode.alignment,
                    y);
    }
    const unsigned width = symbol->modules.width * barcode.moduleWidth;
    const double left = leftOf(width, barcode.alignment);
    double top = y + symbolSpace;
    if (barcode.textAbove) {
      beside(symbol->text, left + width / 2.0, top);
      top += plainBytes.cellHeight() + symbolSpace;
    }
    canvas_.dots(symbol->modules, left, top, barcode.moduleWidth, barcode.height, inkColour);
    if (barcode.textBelow) {
      beside(symbol->text, left + width / 2.0, top + barcode.height + symbolSpace);
    }
  }

  void beside(const std::string& text, double middle, double y) {
    const std::u32string characters = fromUtf8(text);
    const double width = static_cast<double>(characters.size()) * plainBytes.cellWidth();
    canvas_.text(characters, plainBytes, std::max<double>(leftEdge, middle - width / 2), y,
                 inkColour);
  }

  void paint(const QrCode& code, unsigned y) {
    const auto symbol = encode(code);
    if (!symbol) {
      return remark("[no QR code of this data]", code.alignment, y);
    }
    const double left = leftOf(symbol->modules.width * code.moduleSize, code.alignment);
    canvas_.dots(symbol->modules, left, y + symbolSpace, code.moduleSize, code.moduleSize,
                 inkColour);
  }

  void paint(const Feed&, unsigned) {}

  void paint(const Cut&, unsigned y) {  // a partial one: the pieces still hang together
    for (unsigned x = 0; x < paperWidth_; x += 2 * tooth) {
      canvas_.fill(leftEdge + x, y + partialCut / 2.0, tooth, 1, remarkSize);
    }
  }

  unsigned paperWidth_;
  Canvas canvas_;
};

}  // namespace

Picture renderPicture(const Paper& paper) {
  return Painter(paper, Layout(paper)).canvas().picture();
}

Bytes renderPng(const Paper& paper) {
  return Painter(paper, Layout(paper)).canvas().png();
}

}  // namespace quordalvane::simulator
