#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The bar codes and two-dimensional codes of a job, with the settings from its commands. The
/// comments below name each command by its first bytes, in hex.
class SymbolSetter {
 public:
  SymbolSetter();

  /// Applies a setting: the height (1d 68), the module width (1d 77), the position of the text (1d
  /// 48) or the font of the text (1d 66).
  void setBarcode(ByteView command);

  /// Returns the bar code of a command 1d 6b; empty if the symbology is unknown or the end of the
  /// command is missing.
  std::optional<Symbol> barcode(ByteView command) const;

  /// Applies the command 1d 5a, which sets the kind of the symbols that the command 1b 5a prints.
  void setKindAtOnce(ByteView command) { kindAtOnce_ = command[2]; }

  /// Returns the symbol that a complete command 1b 5a prints; empty if the kind set by 1d 5a does
  /// not exist.
  std::optional<Symbol> symbolAtOnce(ByteView command) const;

  enum class Outcome { Stored, Print, Unknown };

  /// Executes a command 1d 28 6b. If the result is `Print`, the caller prints `symbol()`.
  Outcome applyTwoDimensional(ByteView command);

  const Symbol& symbol() const { return *chosen_; }

  /// Returns the answer to a command 1d 28 6b that asks about the stored symbol: its size in dots,
  /// and whether it can be printed. Returns empty if the command asks nothing.
  Bytes sizeReply(ByteView command) const;

 private:
  Symbol* storedFor(std::uint8_t kind);
  static Outcome set(Symbol& symbol, ByteView command);
  static Outcome setForm(Symbol& symbol, unsigned value);
  static Outcome setSize(Symbol& symbol, ByteView command);
  static Outcome setLevel(Symbol& symbol, ByteView command);
  static Outcome storeData(Symbol& symbol, ByteView command);
  static Outcome storeComposite(Symbol& symbol, ByteView command);

  Symbol barcode_;
  std::array<Symbol, 7> stored_;  // the stored symbol of each kind
  const Symbol* chosen_ = nullptr;
  std::uint8_t kindAtOnce_ = 0;
};

}  // namespace quordalvane::simulator
