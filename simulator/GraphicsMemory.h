#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// Returns the scaled dots of a raster command 1d 76 30 (hex); empty if dots are missing.
Bitmap rasterImage(ByteView command);

/// Returns the dots of a bit-image command 1b 2a: a stripe of 8 or 24 dots, scaled by its density;
/// empty if the mode does not exist.
Bitmap columnImage(ByteView command);

/// Returns the dots of a bit-image command 1d 51, in which the job sets the height.
Bitmap tallColumnImage(ByteView command);

/// Converts columns to dots and enlarges them. Each column has `tall` dots; the highest bit of its
/// first byte is at the top. The result is empty if bytes are missing.
Bitmap fromColumns(ByteView columns, unsigned count, unsigned tall, unsigned scaleX,
                   unsigned scaleY);

/// Returns `image` enlarged, without the dots beyond the width of the widest paper.
Bitmap enlarged(const Bitmap& image, unsigned scaleX, unsigned scaleY);

/// The images that one command stores and another prints: the print buffer of the commands 1d 28 4c
/// and 1d 38 4c (hex), and the memories of the commands 1d 28 4c, 1d 44, 1c 71 and 1d 2a. Holds at
/// most `mostBytes`.
class GraphicsMemory {
 public:
  enum class Outcome { Stored, Print, Unknown };

  static constexpr std::size_t mostBytes = std::size_t{1} << 20U;

  /// Executes a command that stores an image, or a command that prints a stored image (1c 70 or 1d
  /// 2f). If the result is `Print`, the caller prints `image()`. `Unknown` means that the image
  /// does not fit or the command is invalid.
  Outcome apply(ByteView command);

  /// Returns the image to be printed: one bitmap for each colour.
  const std::vector<Bitmap>& image() const { return image_; }

  /// Returns the answer to a complete command 1d 28 4c that asks for the size of the memory
  /// (function 0 or 48), for its free part (3, 4, 51 or 52), for the names of the kept images (64)
  /// or for the names of the downloaded images (80). If there are more than forty names, the answer
  /// is the first group of them. `command` may also be a single byte: 06 asks for the next group,
  /// and 15 asks for the same group again. The answer is empty if there is no further group.
  Bytes reply(ByteView command);

  /// Forgets the groups of names. To be called when the host asks for no further group.
  void cancelNames() { groups_.clear(); }

  /// Removes the images that an initialisation of the printer does not keep.
  void initialise();

 private:
  using Image = std::vector<Bitmap>;

  Outcome applyGraphics(ByteView parameters);
  Bytes namesReply(std::uint8_t identifier, unsigned memory);
  Bytes currentGroup() const { return groups_.empty() ? Bytes() : groups_.front(); }
  std::size_t used() const;
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
  std::deque<Bytes> groups_;  // the latest sent group of names, then the unsent groups
};

}  // namespace quordalvane::simulator
