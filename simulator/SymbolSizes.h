#pragma once

namespace quordalvane::simulator {

/// Returns the encoder's number for a DataMatrix code of this size; the lowest number is 1. If
/// `kind` is 1, the code is a rectangle, otherwise a square. If `columns` is 0, the smallest code
/// with this count of rows is meant. If there is no such size, returns 0, which lets the encoder
/// choose.
unsigned dataMatrixSize(unsigned kind, unsigned rows, unsigned columns);

/// Returns the encoder's number for an Aztec code with this count of layers. If `kind` is 1, the
/// code has the compact form. If `layers` is 0 or too large, returns 0, which lets the encoder
/// choose.
unsigned aztecSize(unsigned kind, unsigned layers);

/// Returns a level of error correction for an Aztec code, from 1 to 4: the lowest level that gives
/// at least `hundredths` percent, or 4 if no level gives so much.
unsigned aztecLevel(unsigned hundredths);

}  // namespace quordalvane::simulator
