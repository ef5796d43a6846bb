#pragma once

#include <optional>
#include <string>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// A symbol with one dot a module, and the text that people read beside it.
struct EncodedSymbol {
  Bitmap modules;  ///< a bar code has one row
  std::string text;
};

/// Empty if the data cannot be written in that symbology.
std::optional<EncodedSymbol> encode(const Barcode& barcode);
std::optional<EncodedSymbol> encode(const QrCode& code);

}  // namespace quordalvane::simulator
