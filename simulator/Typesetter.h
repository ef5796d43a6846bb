#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
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

  /// The characters that the printer has from now on.
  void setCharacterSets(const CharacterSets& sets) { decoder_.setCharacterSets(sets); }

  const Paper& paper() const { return paper_; }
  JobRecord& record() { return paper_.record(); }

  /// Takes one complete command, or one character.
  void set(ByteView command);

  /// Ends a line that has begun: no more will be added to it.
  void endLine();

  /// The job is over; the next one may be of the other command system.
  void endJob();

  /// Ends a line that has begun, gives away the paper so far, as if torn off, and continues with a
  /// clean one.
  Paper tearOff();

  /// Gives away the paper so far and continues with a clean one in the middle of the job; a line
  /// that has begun continues there.
  Paper tearOffFinishedLines();

 private:
  using Handler = void (Typesetter::*)(ByteView);
  struct Entry;
  static const Entry commandTable[];

  void character(std::uint8_t byte);
  void add(const DecodedText& text);
  void finishText();
  void initialise(ByteView);
  void printMode(ByteView command);
  void bold(ByteView command);
  void underline(ByteView command);
  void inverse(ByteView command);
  void font(ByteView command);
  void characterSize(ByteView command);
  void align(ByteView command);
  void codePage(ByteView command);
  void nationalSet(ByteView command);
  void multiByte(ByteView command);
  void multiByteCode(ByteView command);
  void characterEncoding(ByteView command);
  void defaultSpacing(ByteView);
  void spacing(ByteView command);
  void feedDots(ByteView command);
  void feedLinesOrCut(ByteView command);
  void position(ByteView command);
  void positionFurther(ByteView command);
  void pageMode(ByteView);
  void cut(ByteView command);
  void fullCut(ByteView);
  void partialCut(ByteView);
  void raster(ByteView command);
  void columnImage(ByteView command);
  void graphics(ByteView command);
  void barcode(ByteView command);
  void barcodeSetting(ByteView command);
  void twoDimensional(ByteView command);
  void ignore(ByteView) {}
  void beepOrSkip(ByteView command);
  void pulse(ByteView command);
  void drawer(ByteView) { ++record().drawer; }
  void beep(ByteView) { ++record().beeps; }

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
