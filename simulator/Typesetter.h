#pragma once

#include <cstdint>
#include <optional>

#include "simulator/Bytes.h"
#include "simulator/CharacterMemory.h"
#include "simulator/GraphicsMemory.h"
#include "simulator/LineBuilder.h"
#include "simulator/PageBuilder.h"
#include "simulator/Paper.h"
#include "simulator/SymbolSetter.h"
#include "simulator/TextDecoder.h"

namespace quordalvane::simulator {

/// The settings that apply only to multi-byte characters.
struct KanjiStyle {
  std::uint8_t width = 1;   ///< a multiple of the usual width
  std::uint8_t height = 1;  ///< a multiple of the usual height
  std::uint8_t underline = 0;
  unsigned spacing = 0;
};

/// Turns complete print commands into paper. Accepts commands of line mode and of ESC/POS in one
/// stream.
///
/// One command is ambiguous: 1b 64 n (hex) feeds n lines in ESC/POS; in line mode, if n is 0 to 3,
/// it cuts the paper. The command is a feed if the job has already used a command that only ESC/POS
/// has; otherwise it is a cut. A job ends at an ETB.
class Typesetter {
 public:
  explicit Typesetter(unsigned paperWidth);

  /// Sets the printer's character sets.
  void setCharacterSets(const CharacterSets& sets) { decoder_.setCharacterSets(sets); }

  const Paper& paper() const { return paper_; }
  JobRecord& record() { return paper_.record(); }

  /// Returns the answer to a command 1d 28 6b that asks for the size of a symbol.
  Bytes sizeReply(ByteView command) const { return symbols_.sizeReply(command); }

  /// Returns the answer to a command 1d 28 4c that asks for stored images.
  Bytes graphicsReply(ByteView command) { return graphics_.reply(command); }

  /// Returns true if the job has selected the display and not the printer.
  bool isDisplayAlone() const { return !printerListens_; }

  /// Executes a complete command, or prints a character.
  void set(ByteView command);

  /// Ends the current line, if it is not empty.
  void endLine();

  /// Ends the job. The next job may use the other of the two command systems.
  void endJob();

  /// Ends the current line, if it is not empty. Returns the paper, which is thereby torn off, and
  /// continues with an empty paper.
  Paper tearOff();

  /// In the middle of a job: returns the paper and continues with an empty paper. The current line
  /// continues on the new paper.
  Paper tearOffFinishedLines();

 private:
  using Handler = void (Typesetter::*)(ByteView);
  struct Entry;
  static const Entry commandTable[];

  void obey(ByteView command);

  // Characters.
  void character(std::uint8_t byte);
  void control(std::uint8_t byte);
  bool addUserCharacter(std::uint8_t byte);
  void add(const DecodedText& text);
  void finishText();

  // Commands for the style and the character sets of text. Defined in TextCommands.cpp.
  void initialise(ByteView);
  void printMode(ByteView command);
  void kanjiMode(ByteView command);
  void bold(ByteView command);
  void underline(ByteView command);
  void inverse(ByteView command);
  void font(ByteView command);
  void characterSize(ByteView command);
  void characterSpacing(ByteView command);
  void colour(ByteView command);
  void rotation(ByteView command);
  void upsideDown(ByteView command);
  void codePage(ByteView command);
  void nationalSet(ByteView command);
  void multiByte(ByteView command);
  void multiByteCode(ByteView command);
  void kanjiDoubled(ByteView command);
  void kanjiUnderline(ByteView command);
  void kanjiSpacing(ByteView command);
  void characterEncoding(ByteView command);
  void userCharacters(ByteView command);
  void userCharactersOn(ByteView command);
  void eraseUserCharacter(ByteView command);

  // Commands for positions, margins and feeds. Defined in PlaceCommands.cpp.
  void align(ByteView command);
  void leftMargin(ByteView command);
  void printWidth(ByteView command);
  void tabStops(ByteView command);
  void defaultSpacing(ByteView);
  void spacing(ByteView command);
  void feedDots(ByteView command);
  void feedLinesOrCut(ByteView command);
  void feedDotsBack(ByteView command);
  void feedLinesBack(ByteView command);
  void position(ByteView command);
  void positionFurther(ByteView command);
  void cut(ByteView command);
  void fullCut(ByteView);
  void partialCut(ByteView);
  void pageMode(ByteView);
  void standardMode(ByteView);
  void printPageAndStay(ByteView);
  void pageArea(ByteView command);
  void pageDirection(ByteView command);
  void pagePosition(ByteView command);
  void pagePositionFurther(ByteView command);

  // Commands for pictures and symbols. Defined in PictureCommands.cpp.
  void raster(ByteView command);
  void columnImage(ByteView command);
  void tallColumnImage(ByteView command);
  void graphics(ByteView command);
  void barcode(ByteView command);
  void barcodeSetting(ByteView command);
  void twoDimensional(ByteView command);
  void symbolAtOnce(ByteView command);
  void symbolKindAtOnce(ByteView command);

  // Commands that print nothing. Defined in DeviceCommands.cpp.
  void ignore(ByteView) {}
  void peripheral(ByteView command);
  void beepOrSkip(ByteView command);
  void pulse(ByteView command);
  void drawer(ByteView);
  void beep(ByteView);
  bool isForDisplay(ByteView command) const;

  Paper& target() { return page_ ? page_->paper() : paper_; }
  void feed(unsigned dots);
  void cutHere(bool partial);
  Place beginPicture();
  void addSymbol(Symbol symbol);
  void addImage(std::vector<Bitmap> layers);
  void endPage();
  void printPage();

  Paper paper_;
  LineBuilder line_;
  std::optional<PageBuilder> page_;  // the current page; empty unless the printer is in page mode
  TextDecoder decoder_;
  TextStyle style_;
  GraphicsMemory graphics_;
  SymbolSetter symbols_;
  CharacterMemory userCharacters_;
  KanjiStyle kanji_;
  bool sawEscPos_ = false;
  bool printerListens_ = true;  // false if the command 1b 3d has deselected the printer
  bool displayListens_ = false;
};

}  // namespace quordalvane::simulator
