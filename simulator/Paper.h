#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/JobRecord.h"

namespace quordalvane::simulator {

/// Print heads of 203 dots an inch: eight dots a millimetre.
inline constexpr unsigned narrowPaperDots = 384;  ///< 58 mm paper
inline constexpr unsigned widePaperDots = 576;    ///< 80 mm paper

/// The pitch of text lines in dots, unless the job sets another.
inline constexpr unsigned lineSpacing = 30;

enum class Alignment { Left, Center, Right };

struct TextStyle {
  bool bold = false;
  bool inverse = false;
  bool smallFont = false;         ///< cells of 9 x 17 dots, not 12 x 24
  bool wide = false;              ///< of the scripts whose characters take the room of two letters
  bool rotated = false;           ///< each character a quarter turn clockwise
  bool grey = false;              ///< of the second colour
  std::uint8_t underline = 0;     ///< thickness in dots, 0 to 2
  std::uint8_t widthFactor = 1;   ///< 1 to 8
  std::uint8_t heightFactor = 1;  ///< 1 to 8
  std::uint8_t spacing = 0;       ///< dots to the right of each character, of single width

  bool operator==(const TextStyle&) const = default;
  unsigned glyphWidth() const { return (smallFont ? 9U : 12U) * (wide ? 2U : 1U) * widthFactor; }
  unsigned glyphHeight() const { return (smallFont ? 17U : 24U) * heightFactor; }
  unsigned cellWidth() const {
    return (rotated ? glyphHeight() : glyphWidth()) + spacing * widthFactor;
  }
  unsigned cellHeight() const { return rotated ? glyphWidth() : glyphHeight(); }
};

struct TextRun {
  std::u32string text;
  TextStyle style;
};

/// Black dots on paper: rows of `stride()` bytes, the leftmost dot in the highest bit.
struct Bitmap {
  unsigned width = 0;
  unsigned height = 0;
  Bytes rows;
  bool grey = false;  ///< of the second colour

  Bitmap() = default;
  Bitmap(unsigned widthInDots, unsigned heightInDots);
  std::size_t stride() const { return (std::size_t{width} + 7) / 8; }
  bool black(unsigned x, unsigned y) const;
  void blacken(unsigned x, unsigned y);
};

/// A piece of a line: text or dots that start `x` dots from the line's own left end.
struct LineItem {
  unsigned x = 0;
  std::variant<TextRun, Bitmap> content;

  unsigned width() const;
  unsigned height() const;
};

/// A place across the paper: within `room` dots that begin `left` dots from the left
/// end of the print, or within all the rest of it if `room` is 0.
struct Place {
  Alignment alignment = Alignment::Left;
  unsigned left = 0;
  unsigned room = 0;
};

/// A line of text and small pictures, standing on one base line. An image is a line of its own.
struct Line {
  std::vector<LineItem> items;
  Place place{};
  unsigned leastHeight = lineSpacing;
  bool upsideDown = false;

  unsigned width() const;
  /// Of the highest item alone, without the line spacing below it.
  unsigned contentHeight() const;
  unsigned height() const;
};

enum class Symbology {
  UpcA,
  UpcE,
  Ean13,
  Ean8,
  Code39,
  Interleaved,
  Codabar,
  Code93,
  Code128,
  Gs1Code128,
  DataBar,
  DataBarTruncated,
  DataBarLimited,
  DataBarExpanded,
  Pdf417,
  TruncatedPdf417,
  Qr,
  MicroQr,
  MaxiCode,
  DataBarStacked,
  DataBarStackedOmnidirectional,
  DataBarExpandedStacked,
  Aztec,
  DataMatrix,
  Composite,
};

/// A bar code or a two-dimensional one.
struct Symbol {
  Symbology symbology = Symbology::Code128;
  std::string data;
  unsigned moduleWidth = 3;
  unsigned rowHeight = 162;  ///< of a bar code the whole height
  unsigned level = 0;        ///< of error correction, 0: the symbology's own choice
  unsigned columns = 0;      ///< or the number of a size; 0: the symbology's own choice
  bool isModel1 = false;     ///< of a QR code, which is then drawn as one of model 2
  Symbology lineKind = Symbology::Ean13;  ///< of a composite one: its bar code
  std::string lineData{};                 ///< and the bar code's data
  bool textAbove = false;
  bool textBelow = false;
  bool smallText = false;
  Place place{};
};

struct Feed {
  int dots = 0;  ///< negative: backwards
};

/// In a page: the next items begin at this distance from its beginning.
struct MoveTo {
  unsigned dots = 0;
};

struct Cut {
  bool partial = false;
};

class Paper;

/// A part of a page: a paper of its own, laid on the page after so many quarter turns to the left.
struct PageArea {
  unsigned x = 0;
  unsigned y = 0;
  unsigned width = 0;
  unsigned height = 0;
  unsigned direction = 0;
  std::shared_ptr<const Paper> content;

  bool operator==(const PageArea&) const = default;
};

/// The content of page mode, printed at once. It ends with its last area, or, if that was never
/// set, with its last print.
struct Page {
  std::vector<PageArea> areas;
  bool endsWithPrint = true;
};

using PaperItem = std::variant<Line, Symbol, Feed, MoveTo, Page, Cut>;

/// The most that a paper may weigh before a printer tears it off: no job, however long, takes more
/// memory. It holds some five thousand lines of text, or seven metres of image.
inline constexpr std::size_t heaviestPaper = std::size_t{4} * 1024 * 1024;

/// The longest paper in dots: fifty metres, a roll.
inline constexpr std::uint64_t longestPaper = 400'000;

/// The output of a printer, from the top. It grows only by prints.
class Paper {
 public:
  explicit Paper(unsigned widthInDots = widePaperDots) : width_(widthInDots) {}

  unsigned width() const { return width_; }
  const std::vector<PaperItem>& items() const { return items_; }

  /// The commands that were skipped because they cannot be shown: their first bytes in hex, and how
  /// often each occurred. Past a hundred kinds the rest is counted as "others".
  const std::map<std::string, std::size_t>& skipped() const { return skipped_; }

  void add(PaperItem item);

  /// Moves the paper; feeds that follow one another are one.
  void feed(unsigned dots);

  /// Moves it back; not beyond its beginning or a cut.
  void feedBack(unsigned dots);

  /// Cuts the paper; if it is cut already, only a full cut of a partial one adds to that.
  void cut(bool partial);

  void noteSkipped(ByteView command);

  /// The events of the job that left no ink.
  const JobRecord& record() const { return record_; }
  JobRecord& record() { return record_; }

  /// About how many bytes of memory its items take.
  std::size_t weight() const { return weight_; }

  /// The most dots that it may be long.
  std::uint64_t length() const { return length_; }

  /// True if a printer tears it off before it prints more.
  bool isTooLong() const { return weight_ > heaviestPaper || length_ > longestPaper; }

  /// True if it was torn off because it grew too heavy: the job continues on the next paper.
  bool goesOn() const { return goesOn_; }
  void setGoesOn() { goesOn_ = true; }

 private:
  unsigned width_;
  std::vector<PaperItem> items_;
  std::map<std::string, std::size_t> skipped_;
  JobRecord record_;
  std::size_t weight_ = 0;
  std::uint64_t length_ = 0;
  bool goesOn_ = false;
};

/// The pieces into which its cuts divide the paper, in order; pieces without print are left out.
std::vector<Paper> piecesOf(const Paper& paper);

}  // namespace quordalvane::simulator
