#pragma once

namespace quordalvane::simulator {

/// The number of a DataMatrix code of this size in the list of sizes, from 1. If `kind` is 1 it is
/// a rectangle, otherwise a square; for a rectangle, 0 columns mean the fewest. Returns 0, with
/// which the encoder chooses, if there is no such size.
unsigned dataMatrixSize(unsigned kind, unsigned rows, unsigned columns);

/// The number of an Aztec code with this count of layers; the compact form if `kind` is 1. Returns
/// 0, with which the encoder chooses, if there are no layers or too many.
unsigned aztecSize(unsigned kind, unsigned layers);

/// The lowest level of an Aztec code, 1 to 4, that has at least this percentage of error
/// correction.
unsigned aztecLevel(unsigned hundredths);

}  // namespace quordalvane::simulator
