#include "simulator/ImageRendering.h"

#include <algorithm>
#include <string>
#include <utility>

#include "simulator/SymbolEncoding.h"
#include "simulator/TextDecoder.h"
#include "simulator/TextRendering.h"

namespace quordalvane::simulator {
namespace {

constexpr std::uint32_t kTable = 0xd9dde1;
constexpr std::uint32_t kPaperColour = 0xfdfdfb;
constexpr std::uint32_t kShadow = 0xb9bec4;
constexpr std::uint32_t kInk = 0x1c1c1e;
constexpr std::uint32_t kRemark = 0x8a8f98;

constexpr unsigned kAround = 16;      // table that shows around the paper
constexpr unsigned kSideMargin = 32;  // paper beside the print
constexpr unsigned kEndMargin = 20;   // paper above the first line and below the last of a piece
constexpr unsigned kTooth = 6;        // of a torn edge
constexpr unsigned kGap = 24;         // between two pieces
constexpr unsigned kPartialCut = 16;
constexpr unsigned kSymbolSpace = 6;  // above and below a symbol, and between it and its text

const TextStyle kPlain{};

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
  return barcode.height + texts * (kPlain.cellHeight() + kSymbolSpace) + 2 * kSymbolSpace;
}

unsigned qrHeight(const QrCode& code) {
  const auto symbol = encode(code);
  return (symbol ? symbol->modules.height * code.moduleSize : kPlain.cellHeight()) +
         2 * kSymbolSpace;
}

struct Height {
  unsigned operator()(const Line& line) const { return line.height(); }
  unsigned operator()(const Barcode& barcode) const { return lineHeight(barcode); }
  unsigned operator()(const QrCode& code) const { return qrHeight(code); }
  unsigned operator()(const Feed& feed) const { return feed.dots; }
  unsigned operator()(const Cut&) const { return kPartialCut; }
};

bool isFullCut(const PaperItem& item) {
  const auto* cut = std::get_if<Cut>(&item);
  return cut != nullptr && !cut->partial;
}

/// Where everything goes.
class Layout {
 public:
  explicit Layout(const Paper& paper) {
    for (const PaperItem& item : paper.items()) {
      if (y_ >= kLongestPicture) {
        endsEarly_ = true;
        break;
      }
      if (isFullCut(item))
        endPiece(true);
      else
        place(item);
    }
    if (endsEarly_)
      y_ += kPlain.cellHeight();
    endPiece(false);
  }

  const std::vector<Placed>& placed() const { return placed_; }
  const std::vector<Piece>& pieces() const { return pieces_; }
  bool endsEarly() const { return endsEarly_; }

  unsigned height() const { return (pieces_.empty() ? y_ : pieces_.back().bottom) + kAround; }

 private:
  void place(const PaperItem& item) {
    placed_.push_back({y_, &item});
    y_ += std::min(std::visit(Height{}, item), kLongestPicture - y_);
  }

  void endPiece(bool cut) {
    const bool empty = y_ == begin_ + kEndMargin;
    if (empty)
      return;
    pieces_.push_back({begin_, y_ + kEndMargin, cut});
    begin_ = y_ + kEndMargin + kGap;
    y_ = begin_ + kEndMargin;
  }

  std::vector<Placed> placed_;
  std::vector<Piece> pieces_;
  unsigned begin_ = kAround;
  unsigned y_ = kAround + kEndMargin;
  bool endsEarly_ = false;
};

class Painter {
 public:
  Painter(const Paper& paper, const Layout& layout)
      : paperWidth_(paper.width()),
        canvas_(paper.width() + 2 * (kSideMargin + kAround), layout.height(), kTable) {
    for (const Piece& piece : layout.pieces())
      paintPiece(piece);
    canvas_.clipTo(kLeft, 0, paper.width(), layout.height());
    for (const Placed& placed : layout.placed())
      std::visit([&](const auto& item) { paint(item, placed.y); }, *placed.item);
    if (layout.endsEarly())
      remark("... and the paper goes on", Alignment::left,
             layout.pieces().back().bottom - kEndMargin - kPlain.cellHeight());
  }

  const Canvas& canvas() const { return canvas_; }

 private:
  static constexpr unsigned kLeft = kAround + kSideMargin;

  // Torn above and below, but for the end that is still in the printer.
  std::vector<Canvas::Point> outline(const Piece& piece, double shift) const {
    const double left = kAround + shift;
    const unsigned teeth = (paperWidth_ + 2 * kSideMargin) / kTooth;
    const double step = static_cast<double>(paperWidth_ + 2 * kSideMargin) / teeth;
    std::vector<Canvas::Point> corners;
    for (unsigned i = 0; i <= teeth; ++i)
      corners.push_back({left + i * step, piece.top + shift + (i % 2 == 0 ? 0 : kTooth)});
    for (unsigned i = teeth + 1; i-- > 0;) {
      const bool notch = piece.cutBelow && i % 2 != 0;
      corners.push_back({left + i * step, piece.bottom + shift - (notch ? kTooth : 0)});
    }
    return corners;
  }

  void paintPiece(const Piece& piece) {
    canvas_.fillPolygon(outline(piece, 2), kShadow);
    canvas_.fillPolygon(outline(piece, 0), kPaperColour);
  }

  double leftOf(unsigned width, Alignment alignment) const {
    const unsigned room = paperWidth_ > width ? paperWidth_ - width : 0;
    if (alignment == Alignment::left)
      return kLeft;
    return kLeft + (alignment == Alignment::center ? room / 2 : room);
  }

  void remark(const std::string& text, Alignment alignment, double y) {
    const std::u32string characters = fromUtf8(text);
    const auto width = static_cast<unsigned>(characters.size()) * kPlain.cellWidth();
    canvas_.text(characters, kPlain, leftOf(width, alignment), y, kRemark);
  }

  void paint(const Line& line, unsigned y) {
    const double left = leftOf(line.width(), line.alignment);
    for (const LineItem& item : line.items) {
      const double top = y + line.contentHeight() - item.height();
      if (const auto* dots = std::get_if<Bitmap>(&item.content))
        canvas_.dots(*dots, left + item.x, top, 1, 1, kInk);
      else
        paint(std::get<TextRun>(item.content), left + item.x, top);
    }
  }

  void paint(const TextRun& run, double x, double y) {
    const TextStyle& style = run.style;
    const double width = static_cast<double>(run.text.size()) * style.cellWidth();
    if (style.inverse)
      canvas_.fill(x, y, width, style.cellHeight(), kInk);
    const std::uint32_t ink = style.inverse ? kPaperColour : kInk;
    if (style.underline > 0)
      canvas_.fill(x, y + style.cellHeight() - 2, width, style.underline, ink);
    canvas_.text(run.text, style, x, y, ink);
  }

  void paint(const Barcode& barcode, unsigned y) {
    const auto symbol = encode(barcode);
    if (!symbol)
      return remark("[no " + symbologyName(barcode.symbology) + " of this data]", barcode.alignment,
                    y);
    const unsigned width = symbol->modules.width * barcode.moduleWidth;
    const double left = leftOf(width, barcode.alignment);
    double top = y + kSymbolSpace;
    if (barcode.textAbove) {
      beside(symbol->text, left + width / 2.0, top);
      top += kPlain.cellHeight() + kSymbolSpace;
    }
    canvas_.dots(symbol->modules, left, top, barcode.moduleWidth, barcode.height, kInk);
    if (barcode.textBelow)
      beside(symbol->text, left + width / 2.0, top + barcode.height + kSymbolSpace);
  }

  void beside(const std::string& text, double middle, double y) {
    const std::u32string characters = fromUtf8(text);
    const double width = static_cast<double>(characters.size()) * kPlain.cellWidth();
    canvas_.text(characters, kPlain, std::max<double>(kLeft, middle - width / 2), y, kInk);
  }

  void paint(const QrCode& code, unsigned y) {
    const auto symbol = encode(code);
    if (!symbol)
      return remark("[no QR code of this data]", code.alignment, y);
    const double left = leftOf(symbol->modules.width * code.moduleSize, code.alignment);
    canvas_.dots(symbol->modules, left, y + kSymbolSpace, code.moduleSize, code.moduleSize, kInk);
  }

  void paint(const Feed&, unsigned) {}

  void paint(const Cut&, unsigned y) {  // a partial one: the pieces still hang together
    for (unsigned x = 0; x < paperWidth_; x += 2 * kTooth)
      canvas_.fill(kLeft + x, y + kPartialCut / 2.0, kTooth, 1, kRemark);
  }

  unsigned paperWidth_;
  Canvas canvas_;
};

}  // namespace

Picture renderPicture(const Paper& paper) {
  return Painter(paper, Layout(paper)).canvas().picture();
}

std::vector<std::uint8_t> renderPng(const Paper& paper) {
  return Painter(paper, Layout(paper)).canvas().png();
}

}  // namespace quordalvane::simulator
