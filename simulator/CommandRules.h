#pragma once

#include <cstdint>

#include "simulator/Bytes.h"

/// How long a command is whose parameters decide it, as `leastCommandLength` says it. Each takes
/// the bytes that the table of commands asks for before it, at least.
namespace quordalvane::simulator::rules {

/// 1b 44: columns, and a zero.
std::uint64_t tabStops(ByteView bytes);

/// Two bytes after the selector hold the length: 1d 28 4c pL pH ...
std::uint64_t countedByWord(ByteView bytes);

/// Four bytes hold it: 1d 38 4c.
std::uint64_t countedByDoubleWord(ByteView bytes);

/// 1b 2a: one byte a column, or three.
std::uint64_t bitImage(ByteView bytes);

/// 1d 76 30 and 1d 51: their width in bytes, and their height.
std::uint64_t raster(ByteView bytes);

/// 1d 2a: its width and height in units of eight dots.
std::uint64_t downloadedImage(ByteView bytes);

/// 1d 6b: data that a zero ends, or that is counted.
std::uint64_t barcode(ByteView bytes);

/// 1d 56: with a feed, or without.
std::uint64_t cut(ByteView bytes);

/// 10 04: the queries for ink and for other devices have one more parameter.
std::uint64_t realTimeStatus(ByteView bytes);

/// 10 14: each function has its own parameters.
std::uint64_t realTimeAction(ByteView bytes);

/// 1d 43: the form of a counter, in numbers or in digits.
std::uint64_t counter(ByteView bytes);

/// 1d 44 m fn a kc1 kc2 b c, then a bitmap file that says its own size.
std::uint64_t bitmapFile(ByteView bytes);

/// 1c 61: the function 0 has a parameter.
std::uint64_t cheque(ByteView bytes);

/// 1b 5a: version, correction and size, then the count of the data.
std::uint64_t countedSymbol(ByteView bytes);

/// 1c 67: the function 1 brings data.
std::uint64_t userMemory(ByteView bytes);

/// 1b 26 y c1 c2, then for each character its width x and y times x bytes.
std::uint64_t userCharacters(ByteView bytes);

/// 1c 71 n, then n images: their size xL xH yL yH in units of eight dots, and the dots.
std::uint64_t storedImages(ByteView bytes);

/// 1d 27 n: n stretches of a line of dots, each its begin and end.
std::uint64_t dividedCurves(ByteView bytes);

/// 12 56 and 12 76: a count of rows of 384 dots, and the rows.
std::uint64_t rowsOfDots(ByteView bytes);

/// 12 2a r n: r rows of n bytes.
std::uint64_t countedRows(ByteView bytes);

/// 1b 57 n m x1 y1 x2 y2 of a display: m says whether the place follows.
std::uint64_t displayWindow(ByteView bytes);

}  // namespace quordalvane::simulator::rules
