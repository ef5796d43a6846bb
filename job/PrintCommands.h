#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "job/ByteView.h"

namespace quordalvane {

/// A command in print data, or a byte that is not part of a command.
struct PrintCommand {
  /// The length of the command in bytes. If the data ends inside the command, this length is larger
  /// than the rest of the data.
  std::size_t length;

  /// True if the command states the length of its payload. Commands for images, barcodes and stored
  /// graphics do this. The bytes of the payload are data, whatever their values are.
  bool isCounted;
};

/// Returns the command at the beginning of `data`, which must not be empty. Returns null if the
/// command is unknown, or if printers disagree about its parameters. In both cases the end of the
/// command is unknown, so the commands after it cannot be read.
std::optional<PrintCommand> printCommandAt(ByteView data);

}  // namespace quordalvane
