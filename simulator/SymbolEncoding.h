#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A symbol with one dot a module, and the text that people read beside it.
struct EncodedSymbol {
  Bitmap modules;
  std::vector<unsigned> rowHeights;  ///< in modules, where rows differ; empty: all are alike
  std::string text;

  /// How many dots high row `row` is in that symbol, and all of them are together.
  unsigned rowHeightIn(const Symbol& symbol, unsigned row) const;
  unsigned heightIn(const Symbol& symbol) const;
};

/// Empty if the data cannot be written in that symbology. May be called from any thread.
std::optional<EncodedSymbol> encode(const Symbol& symbol);

/// For people.
std::string symbologyName(Symbology symbology);

/// The data as people read it beside the symbol, with a check digit that the printer adds.
std::string readableData(const Symbol& symbol, const EncodedSymbol& encoded);

}  // namespace quordalvane::simulator
