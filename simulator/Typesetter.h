#pragma once

#include <cstdint>
#include <span>

#include "simulator/GraphicsMemory.h"
#include "simulator/LineBuilder.h"
#include "simulator/Paper.h"
#include "simulator/SymbolSetter.h"
#include "simulator/TextDecoder.h"

namespace quordalvane::simulator {

/// Turns complete print commands into paper. Understands line-mode jobs and ESC/POS on one stream.
///
/// One command means two things: 1b 64 n feeds n lines in ESC/POS and, for n from 0 to 3, cuts in
/// line mode. It is taken as a feed once the job has shown itself as ESC/POS by a command that only
/// ESC/POS has, and as a cut before that; a job ends at an ETB.
class Typesetter {
 public:
  explicit Typesetter(unsigned paperWidth);

  const Paper& paper() const { return paper_; }
  JobRecord& record() { return paper_.record(); }

  /// Takes one complete command, or one character.
  void set(std::span<const std::uint8_t> command);

  /// Ends a line that has begun: nothing more will come for it.
  void endLine();

  /// The job is over; the next one may be of the other command system.
  void endJob();

  /// Ends a line that has begun, gives away the paper so far, as if torn off, and goes on with a
  /// clean one.
  Paper tearOff();

  /// Gives away the paper so far and goes on with a clean one in the middle of the job; a line that
  /// has begun goes on there.
  Paper tearOffFinishedLines();

 private:
  using Bytes = std::span<const std::uint8_t>;
  using Handler = void (Typesetter::*)(Bytes);
  struct Entry;
  static const Entry commandTable[];

  void character(std::uint8_t byte);
  void finishText();
  void initialise(Bytes);
  void printMode(Bytes command);
  void bold(Bytes command);
  void underline(Bytes command);
  void inverse(Bytes command);
  void font(Bytes command);
  void characterSize(Bytes command);
  void align(Bytes command);
  void codePage(Bytes command);
  void defaultSpacing(Bytes);
  void spacing(Bytes command);
  void feedDots(Bytes command);
  void feedLinesOrCut(Bytes command);
  void position(Bytes command);
  void positionFurther(Bytes command);
  void pageMode(Bytes);
  void cut(Bytes command);
  void fullCut(Bytes);
  void partialCut(Bytes);
  void raster(Bytes command);
  void columnImage(Bytes command);
  void graphics(Bytes command);
  void barcode(Bytes command);
  void barcodeSetting(Bytes command);
  void twoDimensional(Bytes command);
  void ignore(Bytes) {}
  void beepOrSkip(Bytes command);
  void pulse(Bytes command);
  void drawer(Bytes) { ++record().drawer; }
  void beep(Bytes) { ++record().beeps; }

  void feed(unsigned dots);
  void cutHere(bool partial);
  void addImage(Bitmap dots);

  Paper paper_;
  LineBuilder line_;
  TextDecoder decoder_;
  TextStyle style_;
  GraphicsMemory graphics_;
  SymbolSetter symbols_;
  bool sawEscPos_ = false;
  bool pageMode_ = false;
};

}  // namespace quordalvane::simulator
