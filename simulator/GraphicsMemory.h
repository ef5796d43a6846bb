#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The dots of a raster command 1d 76 30, its scale applied. Without all its dots it is empty.
Bitmap rasterImage(ByteView command);

/// The dots of a bit-image command 1b 2a: one stripe of 8 or 24 dots, its density applied. A mode
/// that does not exist gives an empty one.
Bitmap columnImage(ByteView command);

/// The dots of a bit-image command 1d 51, whose height the job chooses.
Bitmap tallColumnImage(ByteView command);

/// Columns of `tall` dots, the topmost in the highest bit of a column's first byte, enlarged.
/// Without all its dots it is empty.
Bitmap fromColumns(ByteView columns, unsigned count, unsigned tall, unsigned scaleX,
                   unsigned scaleY);

/// The same dots enlarged, cut off where no paper is so wide.
Bitmap enlarged(const Bitmap& image, unsigned scaleX, unsigned scaleY);

/// The images that commands store first and print later: the print buffer of 1d 28 4c and 1d 38 4c,
/// and the memories of 1d 28 4c, 1d 44, 1c 71 and 1d 2a. Holds at most `mostBytes`.
class GraphicsMemory {
 public:
  enum class Outcome { Stored, Print, Unknown };

  static constexpr std::size_t mostBytes = std::size_t{1} << 20U;

  /// Carries out one of these commands, or of those that print, 1c 70 and 1d 2f. After `Print` the
  /// image is to be taken with `image()`. What does not fit is unknown.
  Outcome apply(ByteView command);

  /// The image to be printed: the dots of each colour.
  const std::vector<Bitmap>& image() const { return image_; }

  /// The printer is initialised: images that were stored for good remain.
  void initialise();

 private:
  using Image = std::vector<Bitmap>;

  Outcome applyGraphics(ByteView parameters);
  Outcome store(unsigned key, Image image);
  Outcome print(unsigned key, unsigned scaleX, unsigned scaleY);
  Outcome erase(unsigned first, unsigned last);
  Outcome storeNumbered(ByteView command);
  Outcome storeFile(ByteView command);
  Outcome addToBuffer(ByteView parameters, bool byColumns);
  Outcome define(ByteView parameters, unsigned memory, bool byColumns);

  Image buffer_;
  Image image_;
  std::map<unsigned, Image> stored_;
};

}  // namespace quordalvane::simulator
