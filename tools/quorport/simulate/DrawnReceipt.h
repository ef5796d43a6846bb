#pragma once

#include <string>
#include <vector>

namespace quordalvane::tool {

/// A receipt as text and as a picture.
struct DrawnReceipt {
  static constexpr unsigned pieceRows = 4000;  ///< the rows in half a metre of paper

  std::string text;
  unsigned width = 0;   ///< the picture's width in dots; 0 if there is no paper
  unsigned height = 0;  ///< the picture's height in dots; 0 if there is no paper
  std::string picture;  ///< a PNG file; empty if there is no paper
  /// The picture as PNG files of `pieceRows` rows; empty unless the picture has more rows than
  /// that.
  std::vector<std::string> pieces;
};

}  // namespace quordalvane::tool
