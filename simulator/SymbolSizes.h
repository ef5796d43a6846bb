#pragma once

namespace quordalvane::simulator {

/// Returns the number, from 1, of a DataMatrix code of this size in the list of sizes. If `kind` is
/// 1, the code is a rectangle, otherwise a square. For a rectangle, 0 columns mean the fewest. If
/// there is no such size, returns 0, which lets the encoder choose.
unsigned dataMatrixSize(unsigned kind, unsigned rows, unsigned columns);

/// Returns the number of an Aztec code with this count of layers, in the compact form if `kind` is
/// 1. If there are no layers or too many, returns 0, which lets the encoder choose.
unsigned aztecSize(unsigned kind, unsigned layers);

/// Returns the lowest level of an Aztec code, 1 to 4, that has at least this percentage of error
/// correction.
unsigned aztecLevel(unsigned hundredths);

}  // namespace quordalvane::simulator
