#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "simulator/Paper.h"
#include "simulator/SymbolEncoding.h"

namespace quordalvane::simulator {

class PaperLayout;

/// An item at its place down the paper.
struct PlacedItem {
  int top = 0;
  unsigned height = 0;
  const PaperItem* item = nullptr;
  std::optional<EncodedSymbol> symbol{};  ///< of a symbol; empty if it cannot be encoded
  std::vector<std::shared_ptr<PaperLayout>> areas{};  ///< of a page
};

/// A stretch of paper from one cut to the next.
struct Piece {
  unsigned top = 0;
  unsigned bottom = 0;
  bool cutBelow = false;
};

/// The space around the print, in dots.
struct Margins {
  unsigned end = 0;  ///< above the first line and below the last of a piece
  unsigned gap = 0;  ///< between two pieces
};

/// Space above and below a symbol, and between it and its text.
inline constexpr unsigned symbolSpace = 6;

/// The place of each item on a paper, which must outlive this.
class PaperLayout {
 public:
  /// The first piece begins at `top`.
  PaperLayout(const Paper& paper, unsigned top, Margins margins);

  /// Of a paper that grows: without an item yet.
  PaperLayout(unsigned top, Margins margins);

  /// Places the next item, which must outlive this.
  void add(const PaperItem& item);

  const std::vector<PlacedItem>& items() const { return items_; }
  const std::vector<Piece>& pieces() const { return pieces_; }

  /// How far down the next item begins, and how far down anything was printed or fed.
  unsigned position() const { return y_; }
  unsigned end() const { return end_; }

  /// The end of the last piece, or of the print where there are no margins.
  unsigned bottom() const { return pieces_.empty() ? end_ : pieces_.back().bottom; }

 private:
  void place(const PaperItem& item);
  unsigned heightOf(PlacedItem& placed) const;
  void moveOn(int dots);
  void endPiece(bool cut);

  Margins margins_;
  std::vector<PlacedItem> items_;
  std::vector<Piece> pieces_;
  unsigned begin_;  // of the piece
  unsigned y_;
  unsigned end_;  // of what was printed in the piece
};

}  // namespace quordalvane::simulator
