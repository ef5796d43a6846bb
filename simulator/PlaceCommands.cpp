// The commands that place the print: lines, feeds, margins, cuts and page mode.

#include <algorithm>
#include <utility>

#include "simulator/Typesetter.h"

namespace quordalvane::simulator {
namespace {

// The distance from the print head to the blade, in dots. Before a cut, some commands feed the
// paper by at least this distance, so that the blade cuts below the last line.
constexpr unsigned headToBlade = 96;

// The height of a line in dots. In page mode, a vertical position means the foot of a line.
constexpr unsigned lineFoot = 24;

unsigned word(ByteView command, std::size_t at) {
  return command[at] + 256U * command[at + 1];
}

int distance(ByteView command) {
  return static_cast<std::int16_t>(word(command, 2));
}

}  // namespace

void Typesetter::align(ByteView command) {
  const unsigned where = command[2] & 0x0fU;  // 0 to 2, as a number or as an ASCII digit
  if (where <= 2) {
    line_.setAlignment(static_cast<Alignment>(where));
  }
}

void Typesetter::leftMargin(ByteView command) {
  line_.setLeftMargin(word(command, 2));
}

void Typesetter::printWidth(ByteView command) {
  line_.setWidth(word(command, 2));
}

// The parameters are columns in characters, with a zero at the end.
void Typesetter::tabStops(ByteView command) {
  std::vector<unsigned> stops;
  for (const std::uint8_t column : command.subspan(2)) {
    const bool rises = stops.empty() || column * style_.cellWidth() > stops.back();
    if (column == 0 || !rises) {
      break;
    }
    stops.push_back(column * style_.cellWidth());
  }
  line_.setTabs(std::move(stops));
}

void Typesetter::defaultSpacing(ByteView) {
  line_.setSpacing(lineSpacing);
}

void Typesetter::spacing(ByteView command) {
  line_.setSpacing(command[2]);
}

void Typesetter::feedDots(ByteView command) {
  feed(command[2]);
}

void Typesetter::feedLinesOrCut(ByteView command) {
  const unsigned n = command[2];
  if (sawEscPos_ || n > 3) {
    return feed(n * line_.spacing());
  }
  if (n >= 2) {
    feed(headToBlade);
  }
  cutHere(n % 2 == 1);
}

void Typesetter::feedDotsBack(ByteView command) {
  line_.endIfBegun(target());
  target().feedBack(command[2]);
}

void Typesetter::feedLinesBack(ByteView command) {
  line_.endIfBegun(target());
  target().feedBack(command[2] * line_.spacing());
}

void Typesetter::position(ByteView command) {
  line_.moveTo(word(command, 2));
}

void Typesetter::positionFurther(ByteView command) {
  const int to = static_cast<int>(line_.position()) + distance(command);
  if (to >= 0) {
    line_.moveTo(static_cast<unsigned>(to));
  }
}

void Typesetter::cut(ByteView command) {
  const unsigned form = command[2];
  if (command.size() == 4) {
    feed(headToBlade + command[3]);
  }
  cutHere((form & 1U) == (form >= 0x41 ? 0U : 1U));
}

void Typesetter::fullCut(ByteView) {
  cutHere(false);
}

void Typesetter::partialCut(ByteView) {
  cutHere(true);
}

void Typesetter::feed(unsigned dots) {
  line_.endIfBegun(target());
  target().feed(dots);
}

void Typesetter::cutHere(bool partial) {
  if (page_) {
    return;  // no printer cuts in the middle of a page
  }
  line_.endIfBegun(paper_);
  paper_.cut(partial);
  record().noteCut();
}

void Typesetter::pageMode(ByteView) {
  if (!page_) {
    line_.endIfBegun(paper_);
    page_.emplace(paper_.width());
  }
}

// Discards the content of the page.
void Typesetter::standardMode(ByteView) {
  page_.reset();
  line_.setPaperWidth(paper_.width());
}

void Typesetter::endPage() {
  line_.endIfBegun(target());
  if (!page_) {
    return paper_.feed(headToBlade);
  }
  printPage();
  standardMode({});
}

void Typesetter::printPage() {
  paper_.add(page_->page());
}

void Typesetter::printPageAndStay(ByteView) {
  if (page_) {
    line_.endIfBegun(target());
    printPage();
  }
}

void Typesetter::pageArea(ByteView command) {
  if (page_) {
    line_.endIfBegun(target());
    page_->setArea(word(command, 2), word(command, 4), word(command, 6), word(command, 8));
    line_.setPaperWidth(page_->width());
  }
}

void Typesetter::pageDirection(ByteView command) {
  const unsigned direction = command[2] & 0x0fU;  // 0 to 3, as a number or as an ASCII digit
  if (page_ && direction <= 3) {
    line_.endIfBegun(target());
    page_->setDirection(direction);
    line_.setPaperWidth(page_->width());
  }
}

void Typesetter::pagePosition(ByteView command) {
  if (page_) {
    const unsigned across = line_.position();
    line_.endIfBegun(target());
    line_.moveTo(across);
    const unsigned foot = word(command, 2);
    target().add(MoveTo{foot - std::min(foot, lineFoot)});
  }
}

void Typesetter::pagePositionFurther(ByteView command) {
  if (page_) {
    const int dots = distance(command);
    line_.endIfBegun(target());
    if (dots >= 0) {
      target().feed(static_cast<unsigned>(dots));
    } else {
      target().feedBack(static_cast<unsigned>(-dots));
    }
  }
}

}  // namespace quordalvane::simulator
