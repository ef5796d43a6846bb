#pragma once

#include <string>

namespace quordalvane::tool {

/// A receipt as text and as picture.
struct DrawnReceipt {
  std::string text;
  unsigned width = 0;   ///< the picture's width in dots; 0 if there is no paper
  unsigned height = 0;  ///< the picture's height in dots; 0 if there is no paper
  std::string picture;  ///< a PNG file; empty if there is no paper
};

}  // namespace quordalvane::tool
