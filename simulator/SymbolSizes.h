#pragma once

namespace quordalvane::simulator {

/// The number of a DataMatrix code of that size in the list of sizes, from 1 on. It is a
/// rectangle if `kind` is 1, and a square otherwise; 0 columns of a rectangle mean the fewest.
/// Returns 0, the encoder's own choice, if there is no such size.
unsigned dataMatrixSize(unsigned kind, unsigned rows, unsigned columns);

/// The number of an Aztec code of so many layers, of the compact kind if `kind` is 1; 0, the
/// encoder's own choice, if there are none or too many.
unsigned aztecSize(unsigned kind, unsigned layers);

/// The level of an Aztec code, 1 to 4, that has at least so many hundredths of correction.
unsigned aztecLevel(unsigned hundredths);

}  // namespace quordalvane::simulator
