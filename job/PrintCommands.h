#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quordalvane {

/// A command in print data, or a byte that is none.
struct PrintCommand {
  /// All of it. More than there is when the data ends inside it.
  std::size_t length;

  /// True if it says itself how many bytes follow it as its payload: an image, a barcode, a stored
  /// graphic. Those are data whatever their values.
  bool isCounted;
};

/// What stands at the beginning of `data`, which must not be empty. None for a command that is not
/// known, or with parameters on which printers differ: where it ends cannot be told then, and
/// neither what all behind it is.
std::optional<PrintCommand> printCommandAt(std::span<const std::uint8_t> data);

}  // namespace quordalvane
