#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A symbol whose modules are single dots, and the text that is printed beside it.
struct EncodedSymbol {
  Bitmap modules;
  std::vector<unsigned> rowHeights;  ///< the rows' heights in modules; empty if all are equal
  std::string text;

  /// Return the height of row `row` of the symbol, and of all rows together, in dots.
  unsigned rowHeightIn(const Symbol& symbol, unsigned row) const;
  unsigned heightIn(const Symbol& symbol) const;
};

/// Encodes the symbol. Returns empty if the symbol's symbology cannot represent the data. May be
/// called from any thread.
std::optional<EncodedSymbol> encode(const Symbol& symbol);

/// Returns the name of the symbology, for people.
std::string symbologyName(Symbology symbology);

/// Returns the data as people read it beside the symbol, with any check digit that the printer
/// adds.
std::string readableData(const Symbol& symbol, const EncodedSymbol& encoded);

}  // namespace quordalvane::simulator
