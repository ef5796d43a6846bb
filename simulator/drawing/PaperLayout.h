#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "simulator/Paper.h"
#include "simulator/SymbolEncoding.h"

namespace quordalvane::simulator {

class PaperLayout;

/// An item and its vertical position on the paper.
struct PlacedItem {
  int top = 0;
  unsigned height = 0;
  const PaperItem* item = nullptr;
  std::optional<EncodedSymbol> symbol{};  ///< the encoded symbol; empty if it cannot be encoded
  std::vector<std::shared_ptr<PaperLayout>> areas{};  ///< the layouts of a page's areas
};

/// The paper between two cuts.
struct Piece {
  unsigned top = 0;
  unsigned bottom = 0;
  bool cutBelow = false;
};

/// The empty space around the print, in dots.
struct Margins {
  unsigned end = 0;  ///< the space above, and also below, the print of each `Piece`
  unsigned gap = 0;  ///< the space between two pieces
};

/// The space above and below a symbol, and between the symbol and its text, in dots.
inline constexpr unsigned symbolSpace = 6;

/// The position of each item on a paper. The paper must outlive this object.
class PaperLayout {
 public:
  /// Places all items of a paper. `top` is the position of the upper edge of the paper, in dots.
  PaperLayout(const Paper& paper, unsigned top, Margins margins);

  /// Begins an empty layout, for a paper that will grow. `top` is the position of the upper edge of
  /// the paper, in dots.
  PaperLayout(unsigned top, Margins margins);

  /// Places the next item, which must outlive this object.
  void add(const PaperItem& item);

  const std::vector<PlacedItem>& items() const { return items_; }
  const std::vector<Piece>& pieces() const { return pieces_; }

  /// Return two positions on the paper, in dots: the top of the next item, and the lowest position
  /// that printing or feeding has reached in the current piece.
  unsigned position() const { return y_; }
  unsigned end() const { return end_; }

  /// Returns the bottom of the last finished piece. If no piece is finished, returns `end()`.
  unsigned bottom() const { return pieces_.empty() ? end_ : pieces_.back().bottom; }

 private:
  void place(const PaperItem& item);
  unsigned heightOf(PlacedItem& placed) const;
  void moveOn(int dots);
  void endPiece(bool cut);

  Margins margins_;
  std::vector<PlacedItem> items_;
  std::vector<Piece> pieces_;
  unsigned begin_;  // the top of the current piece
  unsigned y_;
  unsigned end_;  // the lowest position that was reached in the current piece
};

}  // namespace quordalvane::simulator
