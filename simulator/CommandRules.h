#pragma once

#include <cstdint>

#include "simulator/Bytes.h"

/// Functions for commands whose length depends on their parameters. Each returns the least total
/// length, as `leastCommandLength` does. `bytes` has at least the bytes that the table of commands
/// requires. In these comments, bytes are in hex.
namespace quordalvane::simulator::rules {

/// The command 1b 44 is followed by columns and a zero.
std::uint64_t tabStops(ByteView bytes);

/// Commands such as 1d 28 4c pL pH give the length of their data in two bytes after the selector.
std::uint64_t countedByWord(ByteView bytes);

/// The command 1d 38 4c gives the length of its data in four bytes.
std::uint64_t countedByDoubleWord(ByteView bytes);

/// The command 1b 2a has one or three bytes for each column.
std::uint64_t bitImage(ByteView bytes);

/// The commands 1d 76 30 and 1d 51 contain the width in bytes and the height.
std::uint64_t raster(ByteView bytes);

/// The command 1d 2a contains the width and the height in units of eight dots.
std::uint64_t downloadedImage(ByteView bytes);

/// The data of the command 1d 6b ends with a zero, or is preceded by its count.
std::uint64_t barcode(ByteView bytes);

/// The command 1d 56 may contain the length of a feed.
std::uint64_t cut(ByteView bytes);

/// The command 10 04 has one more parameter if it asks about ink or other devices.
std::uint64_t realTimeStatus(ByteView bytes);

/// The parameters of the command 10 14 depend on its function.
std::uint64_t realTimeAction(ByteView bytes);

/// The command 1d 43 sets up a counter. Its parameters are binary numbers, or numbers written in
/// digits.
std::uint64_t counter(ByteView bytes);

/// The command 1d 44 m fn a kc1 kc2 b c is followed by a bitmap file, which contains its own size.
std::uint64_t bitmapFile(ByteView bytes);

/// The command 1c 61 has a parameter if its function is 0.
std::uint64_t cheque(ByteView bytes);

/// The command 1b 5a contains the version, the error correction, the size, and the count of the
/// data bytes.
std::uint64_t countedSymbol(ByteView bytes);

/// The command 1c 67 is followed by data if its function is 1.
std::uint64_t userMemory(ByteView bytes);

/// After 1b 26 y c1 c2, each character from c1 to c2 has one byte for its width x, and x columns of
/// y bytes.
std::uint64_t userCharacters(ByteView bytes);

/// The command 1c 71 n is followed by n images. An image consists of its size xL xH yL yH, in units
/// of eight dots, and its dots.
std::uint64_t storedImages(ByteView bytes);

/// The command 1d 27 n is followed by n line segments, each with its start and its end point.
std::uint64_t dividedCurves(ByteView bytes);

/// The commands 12 56 and 12 76 contain a count of rows of 384 dots, and the rows.
std::uint64_t rowsOfDots(ByteView bytes);

/// The command 12 2a r n is followed by r rows of n bytes.
std::uint64_t countedRows(ByteView bytes);

/// The command 1b 57 n m x1 y1 x2 y2 is for displays; m decides whether the four coordinates
/// follow.
std::uint64_t displayWindow(ByteView bytes);

}  // namespace quordalvane::simulator::rules
