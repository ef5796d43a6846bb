#pragma once

#include <cstdint>
#include <optional>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The dots of a raster command 1d 76 30, its scale applied. Without all its dots it is empty.
Bitmap rasterImage(ByteView command);

/// The dots of a bit-image command 1b 2a: one stripe of 8 or 24 dots, its density applied. A mode
/// that does not exist gives an empty one.
Bitmap columnImage(ByteView command);

/// The image that 1d 28 4c and 1d 38 4c store first and print later.
class GraphicsMemory {
 public:
  enum class Outcome { Stored, Print, Unknown };

  /// Carries out one of the two commands. After `print` the image is to be taken with `image()`.
  Outcome apply(ByteView command);

  const Bitmap& image() const { return stored_; }
  void clear() { stored_ = {}; }

 private:
  bool store(ByteView parameters, bool byColumns);

  Bitmap stored_;
};

}  // namespace quordalvane::simulator
