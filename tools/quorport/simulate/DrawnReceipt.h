#pragma once

#include <string>

namespace quordalvane::tool {

/// A receipt as people look at it.
struct DrawnReceipt {
  std::string text;
  unsigned width = 0;   ///< of the picture in dots; 0 without paper
  unsigned height = 0;  ///< likewise
  std::string picture;  ///< a PNG file; empty without paper
};

}  // namespace quordalvane::tool
