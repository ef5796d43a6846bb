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

/// Print heads have 203 dots an inch, which is eight dots a millimetre.
inline constexpr unsigned narrowPaperDots = 384;  ///< 58 mm paper
inline constexpr unsigned widePaperDots = 576;    ///< 80 mm paper

/// The distance of text lines in dots, unless the job sets another.
inline constexpr unsigned lineSpacing = 30;

enum class Alignment { Left, Center, Right };

struct TextStyle {
  bool bold = false;
  bool inverse = false;
  bool smallFont = false;  ///< characters of 9 x 17 dots instead of 12 x 24
  /// Each character is as wide as two letters, as in East Asian scripts.
  bool wide = false;
  bool rotated = false;           ///< each character is turned by 90 degrees clockwise
  bool grey = false;              ///< printed in the second colour
  std::uint8_t underline = 0;     ///< the underline's thickness in dots, 0 to 2
  std::uint8_t widthFactor = 1;   ///< 1 to 8
  std::uint8_t heightFactor = 1;  ///< 1 to 8
  std::uint8_t spacing = 0;       ///< dots to the right of each character, at single width

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

/// Black dots on paper: rows of `stride()` bytes; the leftmost dot is the highest bit.
struct Bitmap {
  unsigned width = 0;
  unsigned height = 0;
  Bytes rows;
  bool grey = false;  ///< printed in the second colour

  Bitmap() = default;
  Bitmap(unsigned widthInDots, unsigned heightInDots);
  std::size_t stride() const { return (std::size_t{width} + 7) / 8; }
  bool black(unsigned x, unsigned y) const;
  void blacken(unsigned x, unsigned y);
};

/// A piece of a line: text or dots that start `x` dots from the left end of the line.
struct LineItem {
  unsigned x = 0;
  std::variant<TextRun, Bitmap> content;

  unsigned width() const;
  unsigned height() const;
};

/// The horizontal place of a line in the print area. The place begins after the first `left` dots,
/// and its width is `room` dots. If `room` is 0, the place ends where the print area ends.
struct Place {
  Alignment alignment = Alignment::Left;
  unsigned left = 0;
  unsigned room = 0;
};

/// A line of text and small pictures on one base line. A large image is a line of its own.
struct Line {
  std::vector<LineItem> items;
  Place place{};
  unsigned leastHeight = lineSpacing;
  bool upsideDown = false;

  unsigned width() const;
  /// Returns the height of the highest item, without the line spacing.
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

/// A bar code or a two-dimensional code.
struct Symbol {
  Symbology symbology = Symbology::Code128;
  std::string data;
  unsigned moduleWidth = 3;
  /// The height of a row in dots; for a bar code, its whole height.
  unsigned rowHeight = 162;
  unsigned level = 0;  ///< the level of error correction; 0 means the default
  /// The number of columns, or the number of a predefined size; 0 means the symbology's default.
  unsigned columns = 0;
  bool isModel1 = false;                  ///< a QR code of model 1, which is drawn as model 2
  Symbology lineKind = Symbology::Ean13;  ///< the kind of the bar code in a composite code
  std::string lineData{};                 ///< the data of the bar code in a composite code
  bool textAbove = false;
  bool textBelow = false;
  bool smallText = false;
  Place place{};
};

struct Feed {
  int dots = 0;  ///< a negative number moves backwards
};

/// In a page: the next items begin at this distance from the beginning of the page.
struct MoveTo {
  unsigned dots = 0;
};

struct Cut {
  bool partial = false;
};

class Paper;

/// An area of a page. It is a paper of its own, turned counter-clockwise by `direction` quarter
/// turns.
struct PageArea {
  unsigned x = 0;
  unsigned y = 0;
  unsigned width = 0;
  unsigned height = 0;
  unsigned direction = 0;
  std::shared_ptr<const Paper> content;

  bool operator==(const PageArea&) const = default;
};

/// The content of page mode, which is printed as a whole. The page ends at the end of its last
/// area. If the job set no area, the page ends after its last print.
struct Page {
  std::vector<PageArea> areas;
  bool endsWithPrint = true;
};

using PaperItem = std::variant<Line, Symbol, Feed, MoveTo, Page, Cut>;

/// The greatest weight of a paper. The weight is the memory of the paper's items, in bytes. A
/// heavier paper is torn off, so that even the longest job takes no more memory. The limit is
/// enough for about five thousand lines of text, or seven metres of image.
inline constexpr std::size_t heaviestPaper = std::size_t{4} * 1024 * 1024;

/// The greatest length of a paper in dots. It is fifty metres, the length of a roll.
inline constexpr std::uint64_t longestPaper = 400'000;

/// The output of a printer, from the top. Output is only added, never removed.
class Paper {
 public:
  explicit Paper(unsigned widthInDots = widePaperDots) : width_(widthInDots) {}

  unsigned width() const { return width_; }
  const std::vector<PaperItem>& items() const { return items_; }

  /// Returns the skipped commands, which cannot be shown on paper. A key is the first bytes of a
  /// command in hex; its value is how often the command occurred. After a hundred keys, all further
  /// commands are counted as "others".
  const std::map<std::string, std::size_t>& skipped() const { return skipped_; }

  void add(PaperItem item);

  /// Moves the paper forward. Consecutive feeds are joined.
  void feed(unsigned dots);

  /// Moves the paper back, at most to its beginning or to a cut.
  void feedBack(unsigned dots);

  /// Cuts the paper. If the paper is already cut at this position, nothing changes, except that a
  /// full cut replaces a partial cut.
  void cut(bool partial);

  void noteSkipped(ByteView command);

  /// Returns the record of the job: its cuts, drawer pulses and similar events, and the parts that
  /// could not be printed.
  const JobRecord& record() const { return record_; }
  JobRecord& record() { return record_; }

  /// Returns the approximate memory of the items, in bytes.
  std::size_t weight() const { return weight_; }

  /// Returns an upper bound of the paper's length, in dots.
  std::uint64_t length() const { return length_; }

  /// Returns true if the paper exceeds a limit. A printer then tears it off before it prints more.
  bool isTooLong() const { return weight_ > heaviestPaper || length_ > longestPaper; }

  /// Returns true if the paper was torn off because it reached a limit. The job then continues on
  /// new paper.
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

/// Returns the pieces into which the cuts divide the paper, in order; empty pieces are left out.
std::vector<Paper> piecesOf(const Paper& paper);

}  // namespace quordalvane::simulator
