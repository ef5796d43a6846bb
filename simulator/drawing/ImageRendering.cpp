#include "simulator/drawing/ImageRendering.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <string>

#include "simulator/TextRendering.h"
#include "simulator/Utf8.h"
#include "simulator/drawing/PaperLayout.h"
#include "simulator/drawing/PaperPainter.h"
#include "simulator/drawing/Plane.h"
#include "simulator/drawing/PngWriter.h"
#include "simulator/drawing/TextDrawing.h"

namespace quordalvane::simulator {
namespace {

// The picture shows the paper as if it lay on a table.
constexpr std::uint32_t tableColour = 0xd9dde1;
constexpr std::uint32_t paperColour = 0xfdfdfb;
constexpr std::uint32_t shadowColour = 0xb9bec4;
constexpr std::uint32_t inkColour = 0x1c1c1e;
constexpr std::uint32_t remarkColour = 0x8a8f98;

constexpr unsigned tableMargin = 16;  // how much table is visible around the paper
constexpr unsigned sideMargin = 32;   // the width of the empty paper beside the print
constexpr unsigned tooth = 6;         // the size of a tooth of the torn edge
constexpr unsigned shadowWidth = 2;
constexpr Margins margins = {.end = 20, .gap = 24};

constexpr unsigned bandHeight = 256;  // how many rows are drawn together

// Each dot of the picture has one of these values. 0 is the paper's shadow. The values from `table`
// to `mostRemark` run from the colour of the table to that of the remarks, which are written on the
// table below the paper. The values from `paperDot` to `mostInk` run from the colour of the paper
// to that of the ink.
constexpr std::uint8_t shadow = 0;
constexpr std::uint8_t table = 1;
constexpr std::uint8_t mostRemark = 127;
constexpr std::uint8_t paperDot = 128;
constexpr std::uint8_t mostInk = 255;

const TextStyle remarkStyle{};

std::uint32_t mixed(std::uint32_t from, std::uint32_t to, unsigned part, unsigned whole) {
  std::uint32_t colour = 0;
  for (const unsigned shift : {0U, 8U, 16U}) {
    const unsigned a = from >> shift & 0xffU;
    const unsigned b = to >> shift & 0xffU;
    colour |= ((a * (whole - part) + b * part) / whole) << shift;
  }
  return colour;
}

Palette makePalette() {
  Palette palette{};
  palette[shadow] = shadowColour;
  for (unsigned i = table; i <= mostRemark; ++i) {
    palette[i] = mixed(tableColour, remarkColour, i - table, mostRemark - table);
  }
  for (unsigned i = paperDot; i <= mostInk; ++i) {
    palette[i] = mixed(paperColour, inkColour, i - paperDot, mostInk - paperDot);
  }
  return palette;
}

const Palette palette = makePalette();

// Returns the remarks, in lines that fit below the paper.
std::vector<std::string> remarkLines(const Paper& paper) {
  const std::size_t columns = paper.width() / remarkStyle.cellWidth();
  std::vector<std::string> lines;
  for (const std::string& remark : remarksOn(paper)) {
    for (std::size_t begin = 0; begin < remark.size(); begin += columns) {
      lines.push_back(remark.substr(begin, columns));
    }
  }
  return lines;
}

/// A picture that is drawn in bands, from the top.
class BandedPicture {
 public:
  explicit BandedPicture(const Paper& paper)
      : paperWidth_(paper.width()),
        layout_(paper, tableMargin, margins),
        remarks_(remarkLines(paper)) {}

  unsigned width() const { return paperWidth_ + 2 * (sideMargin + tableMargin); }

  unsigned height() const {
    const auto lines = static_cast<unsigned>(remarks_.size());
    return remarksTop() + lines * remarkStyle.cellHeight() + tableMargin;
  }

  /// Calls `take` with each row, in order.
  void draw(const std::function<void(ByteView)>& take) const {
    Bytes row(width());
    const Bytes bare(paperWidth_, Plane::bare);  // most rows equal this empty one
    for (unsigned top = 0; top < height(); top += bandHeight) {
      const unsigned rows = std::min(bandHeight, height() - top);
      Plane print(paperWidth_, rows);
      paint(print, layout_, top);
      paintRemarks(print, top);
      for (unsigned y = 0; y < rows; ++y) {
        drawBackground(row, top + y);
        if (std::memcmp(print.row(y).data(), bare.data(), bare.size()) != 0) {
          drawPrint(row, print.row(y));
        }
        take(row);
      }
    }
  }

 private:
  static constexpr unsigned leftEdge = tableMargin + sideMargin;

  unsigned remarksTop() const { return layout_.bottom() + (remarks_.empty() ? 0 : symbolSpace); }

  void paintRemarks(Plane& print, unsigned top) const {
    auto y = static_cast<int>(remarksTop()) - static_cast<int>(top);
    for (const std::string& line : remarks_) {
      if (y < static_cast<int>(print.height()) && y + 24 > 0) {
        drawText(print, fromUtf8(line), remarkStyle, 0, y, Plane::ink);
      }
      y += static_cast<int>(remarkStyle.cellHeight());
    }
  }

  void drawBackground(Bytes& row, unsigned y) const {
    std::fill(row.begin(), row.end(), table);
    const auto& pieces = layout_.pieces();
    const auto piece = std::find_if(pieces.begin(), pieces.end(),
                                    [&](const Piece& one) { return y < one.bottom + shadowWidth; });
    if (piece == pieces.end() || y < piece->top) {
      return;
    }
    if (y >= piece->top + shadowWidth) {
      drawPiece(row, *piece, y - shadowWidth, shadowWidth, shadow);
    }
    if (y < piece->bottom) {
      drawPiece(row, *piece, y, 0, paperDot);
    }
  }

  // Draws torn edges above the piece, and below the piece unless the end of the piece is still in
  // the printer.
  void drawPiece(Bytes& row, const Piece& piece, unsigned y, unsigned shift,
                 std::uint8_t value) const {
    const unsigned fromTop = y - piece.top;
    const unsigned fromBottom = piece.cutBelow ? piece.bottom - 1 - y : tooth;
    const unsigned depth = std::min({fromTop, fromBottom, tooth});
    const unsigned left = tableMargin + shift;
    const unsigned right = tableMargin + paperWidth_ + 2 * sideMargin + shift;
    if (depth == tooth) {
      std::fill(row.begin() + left, row.begin() + right, value);
      return;
    }
    for (unsigned x = left; x < right; ++x) {
      const unsigned inTooth = (x - left) % (2 * tooth);
      const unsigned notch = std::min(inTooth, 2 * tooth - inTooth);
      if (notch <= depth) {
        row[x] = value;
      }
    }
  }

  void drawPrint(Bytes& row, ByteView print) const {
    for (unsigned x = 0; x < paperWidth_; ++x) {
      if (print[x] != Plane::bare) {
        std::uint8_t& dot = row[leftEdge + x];
        dot = static_cast<std::uint8_t>(
            dot >= paperDot ? paperDot + print[x] * (mostInk - paperDot) / Plane::ink
                            : table + print[x] * (mostRemark - table) / Plane::ink);
      }
    }
  }

  unsigned paperWidth_;
  PaperLayout layout_;
  std::vector<std::string> remarks_;
};

Bytes pngOf(const BandedPicture& banded) {
  PngWriter writer(banded.width(), banded.height(), palette);
  banded.draw([&](ByteView row) { writer.add(row); });
  return writer.finish();
}

// Draws the picture once, and writes it as a whole and in pieces.
void drawInPieces(const BandedPicture& banded, unsigned pieceRows, PngPicture& picture) {
  PngWriter whole(picture.width, picture.height, palette);
  std::optional<PngWriter> piece;
  unsigned row = 0;
  banded.draw([&](ByteView dots) {
    if (row % pieceRows == 0) {
      piece.emplace(picture.width, std::min(pieceRows, picture.height - row), palette);
    }
    whole.add(dots);
    piece->add(dots);
    ++row;
    if (row % pieceRows == 0 || row == picture.height) {
      picture.pieces.push_back(piece->finish());
    }
  });
  picture.png = whole.finish();
}

}  // namespace

Picture renderPicture(const Paper& paper) {
  const BandedPicture banded(paper);
  Picture picture{banded.width(), banded.height(), {}};
  banded.draw([&](ByteView row) {
    for (const std::uint8_t dot : row) {
      picture.pixels.push_back(palette[dot]);
    }
  });
  return picture;
}

Bytes renderPng(const Paper& paper) {
  return pngOf(BandedPicture(paper));
}

PngPicture renderPngPicture(const Paper& paper, unsigned pieceRows) {
  const BandedPicture banded(paper);
  PngPicture picture{banded.width(), banded.height(), {}, {}};
  if (picture.height > pieceRows) {
    drawInPieces(banded, pieceRows, picture);
  } else {
    picture.png = pngOf(banded);
  }
  return picture;
}

}  // namespace quordalvane::simulator
