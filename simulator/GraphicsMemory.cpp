#include "simulator/GraphicsMemory.h"

#include <algorithm>
#include <string>
#include <utility>

#include "simulator/BitmapFile.h"

namespace quordalvane::simulator {
namespace {

// The widest paper in dots. Without this limit, a few bytes with a large scale could create a huge
// image.
constexpr unsigned widest = widePaperDots;

unsigned word(ByteView bytes, std::size_t at) {
  return bytes[at] + 256U * bytes[at + 1];
}

// The key of an image is the sum of two numbers. The first is one of the next four constants and
// stands for the image's memory. The second is the image's number or two-byte name in this memory,
// or 0 if the memory has only one image.
constexpr unsigned keptMemory = 1U << 16U;       // the memory that 1b 40 (initialise) keeps
constexpr unsigned downloadMemory = 2U << 16U;   // the memory that 1b 40 (initialise) erases
constexpr unsigned numberedMemory = 3U << 16U;   // the memory of the command 1c 71; 1b 40 keeps it
constexpr unsigned downloadedImage = 4U << 16U;  // the one image of 1d 2a; 1b 40 erases it
constexpr unsigned memorySize = 1U << 16U;

constexpr std::uint8_t firstColour = 49;

unsigned scaleIn(std::uint8_t mode, unsigned bit) {
  return (mode & bit) != 0 ? 2 : 1;
}

std::size_t weightOf(const std::vector<Bitmap>& image) {
  std::size_t sum = 0;
  for (const Bitmap& layer : image) {
    sum += sizeof layer + layer.rows.size();
  }
  return sum;
}

bool dot(ByteView rows, std::size_t stride, std::size_t x, std::size_t y) {
  return (rows[y * stride + x / 8] & 0x80U >> x % 8U) != 0;
}

Bitmap fromRows(ByteView rows, unsigned width, unsigned height, unsigned scaleX, unsigned scaleY) {
  const std::size_t stride = (std::size_t{width} + 7) / 8;
  if (stride == 0 || rows.size() < stride * height) {
    return {};
  }
  Bitmap image(std::min(width * scaleX, widest), height * scaleY);
  for (unsigned y = 0; y < image.height; ++y) {
    for (unsigned x = 0; x < image.width; ++x) {
      if (dot(rows, stride, x / scaleX, y / scaleY)) {
        image.blacken(x, y);
      }
    }
  }
  return image;
}

// Returns the reply that contains the count of bytes in decimal digits.
Bytes numberReply(std::uint8_t identifier, std::size_t number) {
  Bytes reply = {0x37, identifier};
  for (const char digit : std::to_string(number)) {
    reply.push_back(static_cast<std::uint8_t>(digit));
  }
  reply.push_back(0);
  return reply;
}

}  // namespace

Bitmap fromColumns(ByteView columns, unsigned count, unsigned tall, unsigned scaleX,
                   unsigned scaleY) {
  const std::size_t stride = (std::size_t{tall} + 7) / 8;
  if (stride == 0 || columns.size() < stride * count) {
    return {};
  }
  Bitmap image(std::min(count * scaleX, widest), tall * scaleY);
  for (unsigned y = 0; y < image.height; ++y) {
    for (unsigned x = 0; x < image.width; ++x) {
      if (dot(columns, stride, y / scaleY, x / scaleX)) {
        image.blacken(x, y);
      }
    }
  }
  return image;
}

Bitmap rasterImage(ByteView command) {
  if (command.size() < 8) {
    return {};
  }
  const unsigned mode = command[3];
  return fromRows(command.subspan(8), word(command, 4) * 8, word(command, 6), mode & 1U ? 2 : 1,
                  mode & 2U ? 2 : 1);
}

Bitmap columnImage(ByteView command) {
  if (command.size() < 5) {
    return {};
  }
  const bool tall = command[2] >= 32;
  const bool dense = (command[2] & 1U) != 0;
  // A stripe of eight dots is as high as a stripe of 24. In single density, a dot is twice as wide.
  return fromColumns(command.subspan(5), word(command, 3), tall ? 24 : 8, dense ? 1 : 2,
                     tall ? 1 : 3);
}

Bitmap tallColumnImage(ByteView command) {
  if (command.size() < 8 || command[2] != '0') {
    return {};
  }
  return fromColumns(command.subspan(8), word(command, 4), word(command, 6) * 8,
                     scaleIn(command[3], 1), scaleIn(command[3], 2));
}

Bitmap enlarged(const Bitmap& image, unsigned scaleX, unsigned scaleY) {
  Bitmap large = fromRows(image.rows, image.width, image.height, scaleX, scaleY);
  large.grey = image.grey;
  return large;
}

GraphicsMemory::Outcome GraphicsMemory::apply(ByteView command) {
  const unsigned name = command[0] * 256U + command[1];
  switch (name) {
    case 0x1c70:
      return print(numberedMemory + command[2], scaleIn(command[3], 1), scaleIn(command[3], 2));
    case 0x1c71:
      return storeNumbered(command);
    case 0x1d2a:
      return store(downloadedImage,
                   {fromColumns(command.subspan(4), command[2] * 8U, command[3] * 8U, 1, 1)});
    case 0x1d44:
      return storeFile(command);
    case 0x1d2f:
      return print(downloadedImage, scaleIn(command[2], 1), scaleIn(command[2], 2));
    default:
      break;
  }
  const std::size_t header = command[1] == 0x38 ? 7 : 5;
  const bool isGraphics = command[2] == 0x4c && command.size() >= header + 2;
  return isGraphics ? applyGraphics(command.subspan(header)) : Outcome::Unknown;
}

GraphicsMemory::Outcome GraphicsMemory::applyGraphics(ByteView parameters) {
  const std::uint8_t function = parameters[1];
  const bool isKept = function >= 64 && function <= 69;
  const unsigned memory = isKept ? keptMemory : downloadMemory;
  switch (function) {
    case 1:
    case 49:  // the density, which has no effect here
      return Outcome::Stored;
    case 2:
    case 50:
      image_ = std::exchange(buffer_, {});
      return image_.empty() ? Outcome::Stored : Outcome::Print;
    case 65:
    case 81:
      return erase(memory, memory + memorySize);
    case 66:
    case 82:
      return parameters.size() < 4
                 ? Outcome::Unknown
                 : erase(memory + word(parameters, 2), memory + word(parameters, 2) + 1);
    case 67:
    case 68:
    case 83:
    case 84:
      return define(parameters, memory, function % 16 == 4);
    case 69:
    case 85:
      return parameters.size() < 6
                 ? Outcome::Unknown
                 : print(memory + word(parameters, 2), parameters[4], parameters[5]);
    case 112:
    case 113:
      return addToBuffer(parameters, function == 113);
    default:
      return Outcome::Unknown;
  }
}

GraphicsMemory::Outcome GraphicsMemory::store(unsigned key, Image image) {
  if (image.empty() || image[0].width == 0 || image[0].height == 0) {
    return Outcome::Unknown;
  }
  stored_.erase(key);
  if (weightOf(image) + used() > mostBytes) {
    return Outcome::Unknown;
  }
  stored_[key] = std::move(image);
  return Outcome::Stored;
}

std::size_t GraphicsMemory::used() const {
  std::size_t sum = 0;
  for (const auto& [key, image] : stored_) {
    sum += weightOf(image);
  }
  return sum;
}

Bytes GraphicsMemory::reply(ByteView command) {
  constexpr std::uint8_t nextGroup = 0x06;
  if (command.size() == 1) {
    if (command[0] == nextGroup && !groups_.empty()) {
      groups_.pop_front();
    }
    return currentGroup();
  }
  switch (command[6]) {
    case 64:
      return namesReply(0x72, keptMemory);
    case 80:
      return namesReply(0x73, downloadMemory);
    case 0:
    case 48:
      return numberReply(0x30, mostBytes);
    case 3:
    case 51:
      return numberReply(0x31, mostBytes - used());
    default:
      return numberReply(0x32, mostBytes - used());
  }
}

Bytes GraphicsMemory::namesReply(std::uint8_t identifier, unsigned memory) {
  constexpr std::size_t groupBytes = 80;
  constexpr std::uint8_t last = 0x40;
  constexpr std::uint8_t moreFollows = 0x41;
  Bytes names;
  for (auto at = stored_.lower_bound(memory); at != stored_.lower_bound(memory + memorySize);
       ++at) {
    names.push_back(static_cast<std::uint8_t>(at->first));
    names.push_back(static_cast<std::uint8_t>(at->first >> 8U));
  }
  groups_.clear();
  ByteView rest = names;
  do {
    const ByteView part = rest.first(std::min(groupBytes, rest.size()));
    rest = rest.subspan(part.size());
    Bytes group = {0x37, identifier, rest.empty() ? last : moreFollows};
    group.insert(group.end(), part.begin(), part.end());
    group.push_back(0);
    groups_.push_back(std::move(group));
  } while (!rest.empty());
  return currentGroup();
}

GraphicsMemory::Outcome GraphicsMemory::print(unsigned key, unsigned scaleX, unsigned scaleY) {
  const auto found = stored_.find(key);
  if (found == stored_.end()) {
    return Outcome::Unknown;
  }
  image_.clear();
  for (const Bitmap& layer : found->second) {
    image_.push_back(enlarged(layer, std::clamp(scaleX, 1U, 2U), std::clamp(scaleY, 1U, 2U)));
  }
  return Outcome::Print;
}

GraphicsMemory::Outcome GraphicsMemory::erase(unsigned first, unsigned last) {
  stored_.erase(stored_.lower_bound(first), stored_.lower_bound(last));
  return Outcome::Stored;
}

// The command is 1c 71 n, followed by n images. Each image begins with its width and its height in
// units of eight dots; its dots follow, column by column. The images replace all earlier images of
// this memory.
GraphicsMemory::Outcome GraphicsMemory::storeNumbered(ByteView command) {
  erase(numberedMemory, numberedMemory + memorySize);
  std::size_t at = 3;
  for (unsigned number = 1; number <= command[2] && at + 4 <= command.size(); ++number) {
    const unsigned width = word(command, at) * 8;
    const unsigned height = word(command, at + 2) * 8;
    const std::size_t bytes = std::size_t{width} * height / 8;
    at += 4;
    if (bytes > command.size() - at ||
        store(numberedMemory + number,
              {fromColumns(command.subspan(at, bytes), width, height, 1, 1)}) != Outcome::Stored) {
      return Outcome::Unknown;
    }
    at += bytes;
  }
  return Outcome::Stored;
}

// The command is 1d 44 m fn a kc1 kc2 tone colour, followed by a bitmap file.
GraphicsMemory::Outcome GraphicsMemory::storeFile(ByteView command) {
  constexpr std::uint8_t toKept = 67;
  constexpr std::uint8_t toDownload = 83;
  const std::uint8_t function = command[3];
  if (command.size() < 9 || (function != toKept && function != toDownload)) {
    return Outcome::Unknown;
  }
  const unsigned memory = function == toKept ? keptMemory : downloadMemory;
  return store(memory + word(command, 5), {fromBitmapFile(command.subspan(9))});
}

// The parameters are m fn tone scaleX scaleY colour xL xH yL yH, followed by the dots of one
// colour.
GraphicsMemory::Outcome GraphicsMemory::addToBuffer(ByteView parameters, bool byColumns) {
  if (parameters.size() < 10) {
    return Outcome::Unknown;
  }
  const unsigned scaleX = std::clamp<unsigned>(parameters[3], 1, 2);
  const unsigned scaleY = std::clamp<unsigned>(parameters[4], 1, 2);
  const unsigned width = word(parameters, 6);
  const unsigned height = word(parameters, 8);
  const ByteView dots = parameters.subspan(10);
  Bitmap layer = byColumns ? fromColumns(dots, width, height, scaleX, scaleY)
                           : fromRows(dots, width, height, scaleX, scaleY);
  layer.grey = parameters[5] > firstColour;
  if (layer.width == 0 || layer.height == 0 || weightOf(buffer_) > mostBytes) {
    return Outcome::Unknown;
  }
  if (!layer.grey) {
    buffer_.clear();
  }
  buffer_.push_back(std::move(layer));
  return Outcome::Stored;
}

// The parameters are m fn tone kc1 kc2 count xL xH yL yH. They are followed by `count`
// pairs: the number of a colour, and the dots of this colour.
GraphicsMemory::Outcome GraphicsMemory::define(ByteView parameters, unsigned memory,
                                               bool byColumns) {
  if (parameters.size() < 10) {
    return Outcome::Unknown;
  }
  const unsigned width = word(parameters, 6);
  const unsigned height = word(parameters, 8);
  const std::size_t bytes =
      byColumns ? std::size_t{(height + 7) / 8} * width : std::size_t{(width + 7) / 8} * height;
  Image image;
  std::size_t at = 10;
  for (unsigned colour = 0; colour < parameters[5]; ++colour) {
    if (parameters.size() < at + 1 + bytes) {
      return Outcome::Unknown;
    }
    const ByteView dots = parameters.subspan(at + 1, bytes);
    image.push_back(byColumns ? fromColumns(dots, width, height, 1, 1)
                              : fromRows(dots, width, height, 1, 1));
    image.back().grey = parameters[at] > firstColour;
    at += 1 + bytes;
  }
  return store(memory + word(parameters, 3), std::move(image));
}

void GraphicsMemory::initialise() {
  buffer_.clear();
  cancelNames();
  erase(downloadMemory, downloadMemory + memorySize);
  erase(downloadedImage, downloadedImage + 1);
}

}  // namespace quordalvane::simulator
