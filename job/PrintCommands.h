#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "job/ByteView.h"

namespace quordalvane {

/// A command in print data, or a byte that is no command.
struct PrintCommand {
  /// Its length; more than there are bytes if the data ends inside it.
  std::size_t length;

  /// True if it contains the length of its payload: an image, a barcode, a stored graphic. The
  /// bytes of the payload are data whatever their values.
  bool isCounted;
};

/// The command at the beginning of `data`, which must not be empty. Empty for a command that is not
/// known, or on whose parameters printers differ: its end, and so everything after it, is then
/// unknown.
std::optional<PrintCommand> printCommandAt(ByteView data);

}  // namespace quordalvane
