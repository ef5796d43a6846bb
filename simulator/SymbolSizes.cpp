#include "simulator/SymbolSizes.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace quordalvane::simulator {
namespace {

struct Size {
  std::uint8_t rows;
  std::uint8_t columns;
};

// The sizes of DataMatrix codes; the first has the number 1.
constexpr Size dataMatrixSizes[] = {
    {10, 10}, {12, 12}, {14, 14}, {16, 16}, {18, 18},   {20, 20},   {22, 22},   {24, 24},
    {26, 26}, {32, 32}, {36, 36}, {40, 40}, {44, 44},   {48, 48},   {52, 52},   {64, 64},
    {72, 72}, {80, 80}, {88, 88}, {96, 96}, {104, 104}, {120, 120}, {132, 132}, {144, 144},
    {8, 18},  {8, 32},  {12, 26}, {12, 36}, {16, 36},   {16, 48},
};

}  // namespace

unsigned dataMatrixSize(unsigned kind, unsigned rows, unsigned columns) {
  const auto found =
      std::find_if(std::begin(dataMatrixSizes), std::end(dataMatrixSizes), [&](const Size& size) {
        const bool isRectangle = size.rows != size.columns;
        return isRectangle == (kind == 1) && size.rows == rows &&
               (columns == 0 || size.columns == columns);
      });
  const bool isThere = rows > 0 && found != std::end(dataMatrixSizes);
  return isThere ? static_cast<unsigned>(found - std::begin(dataMatrixSizes)) + 1 : 0;
}

unsigned aztecSize(unsigned kind, unsigned layers) {
  constexpr unsigned mostCompact = 4;
  constexpr unsigned mostFull = 32;
  const bool isCompact = kind == 1;
  return layers == 0 || layers > (isCompact ? mostCompact : mostFull) ? 0
         : isCompact                                                  ? layers
                                                                      : layers + mostCompact;
}

unsigned aztecLevel(unsigned hundredths) {
  return hundredths <= 10 ? 1 : hundredths <= 23 ? 2 : hundredths <= 36 ? 3 : 4;
}

}  // namespace quordalvane::simulator
