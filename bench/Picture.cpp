// Draws a bar for each row of the report whose limit is not zero. The bar shows our figure divided
// by the row's limit. Each step of the scale doubles this ratio.

#include <algorithm>
#include <cmath>
#include <ostream>

#include "bench/Report.h"

namespace quordalvane::bench {
namespace {

constexpr int rowHeight = 22;
constexpr int top = 56;
constexpr int textWidth = 430;
constexpr int stepWidth = 40;
constexpr int stepsDown = 4;  // four halvings: the scale begins at the ratio 1/16
constexpr int stepsUp = 4;    // four doublings: the scale ends at the ratio 16
constexpr int width = textWidth + stepWidth * (stepsDown + stepsUp) + 190;

double placeOf(double ratio) {
  const double steps = std::clamp(std::log2(ratio), -1.0 * stepsDown, 1.0 * stepsUp);
  return textWidth + stepWidth * (stepsDown + steps);
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    result += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
  }
  return result;
}

void writeText(std::ostream& out, double x, double y, const std::string& text) {
  out << "<text x=\"" << x << "\" y=\"" << y << "\">" << escaped(text) << "</text>\n";
}

void writeBar(std::ostream& out, const Row& row, int y) {
  const double limit = placeOf(1);
  const double ours = placeOf(row.ratio());
  writeText(out, 8, y + 15, row.heading.id + "  " + row.heading.what);
  out << "<rect class=\"ours\" x=\"" << std::min(limit, ours) << "\" y=\"" << y + 4 << "\" width=\""
      << std::max(std::abs(ours - limit), 1.0) << "\" height=\"" << rowHeight - 8 << "\"/>\n";
  writeText(out, placeOf(1 << stepsUp) + 8, y + 15,
            figure(row.ratio()) + " x   (goal " + row.heading.goal + ")");
}

void writeScale(std::ostream& out, int bottom) {
  for (int step = -stepsDown; step <= stepsUp; ++step) {
    const double x = placeOf(std::exp2(step));
    out << "<line class=\"" << (step == 0 ? "limit" : "step") << "\" x1=\"" << x << "\" y1=\""
        << top - 8 << "\" x2=\"" << x << "\" y2=\"" << bottom << "\"/>\n";
    writeText(out, x - 8, top - 14,
              step < 0 ? "1/" + figure(std::exp2(-step)) : figure(std::exp2(step)));
  }
}

}  // namespace

void writePicture(std::ostream& out, const Rows& rows) {
  const int bottom = top + rowHeight * static_cast<int>(rows.size());
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\""
      << bottom + 12 << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
      << "<style>.ours{fill:#3b76b8} .limit{stroke:#333} .step{stroke:#ddd}</style>\n"
      << "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
  writeText(out, 8, 20, "Ours as a multiple of the bare limit (1), each step a doubling");
  writeScale(out, bottom);
  int y = top;
  for (const Row& row : rows) {
    if (row.limit > 0) {
      writeBar(out, row, y);
      y += rowHeight;
    }
  }
  out << "</svg>\n";
}

}  // namespace quordalvane::bench
