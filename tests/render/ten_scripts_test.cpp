// Draws examples/ten-scripts.txt and compares the paper with docs/ten-scripts.png. To draw that
// picture again after an intended change, set QUOR_DRAW_REFERENCE=1, and look at the picture.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "render/Picture.h"
#include "render/PrinterCommands.h"
#include "render/TextPrinting.h"
#include "simulator/PrinterBuilder.h"
#include "simulator/PrinterLink.h"
#include "simulator/drawing/ImageRendering.h"

namespace quordalvane::render {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr auto reference = "docs/ten-scripts.png";

std::string contentsOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in) << file;
  return {std::istreambuf_iterator<char>(in), {}};
}

struct Rendered {
  Bytes job;
  std::set<char32_t> missing;
};

Rendered rendered(const std::string& text) {
  Rendered result;
  const Output output = [&](ByteView bytes) {
    result.job.insert(result.job.end(), bytes.begin(), bytes.end());
  };
  output(initialize);
  TextPrinting printing(simulator::widePaperDots, CodePage(), output);
  printing.add(text);
  printing.end();
  output(cutPaper);
  result.missing = printing.missing();
  return result;
}

// The paper of a printer that was handed the job, as a PNG file.
Bytes paperOf(const Bytes& job) {
  simulator::VirtualPrinter printer(simulator::PrinterBuilder().state());
  simulator::PrinterLink link(printer, {});
  for (ByteView left = job; !left.empty() && link.space({}) > 0;) {
    left = left.subspan(link.write(left, {}));
  }
  return simulator::renderPng(printer.paper());
}

struct Difference {
  std::size_t dark = 0;
  std::size_t different = 0;
  bool sameSize = false;
};

// Counts the pixels that are dark in the first picture, and those that are dark in only one
// picture.
Difference differenceOf(ByteView one, ByteView other) {
  const auto first = openPicture(one, 1);
  const auto second = openPicture(other, 1);
  Difference difference;
  difference.sameSize = first->width() == second->width() && first->height() == second->height();
  Bytes row(first->width());
  Bytes otherRow(second->width());
  for (unsigned y = 0; y < std::min(first->height(), second->height()); ++y) {
    first->read(row);
    second->read(otherRow);
    for (std::size_t x = 0; x < std::min(row.size(), otherRow.size()); ++x) {
      const bool isDark = row[x] < 128;
      difference.dark += isDark ? 1U : 0U;
      difference.different += isDark != (otherRow[x] < 128) ? 1U : 0U;
    }
  }
  return difference;
}

TEST(TextInTenScripts, IsPrintedAsInTheReferenceImage) {
  const Rendered text = rendered(contentsOf("examples/ten-scripts.txt"));
  EXPECT_TRUE(text.missing.empty()) << text.missing.size() << " characters without a glyph";
  const Bytes paper = paperOf(text.job);
  if (std::getenv("QUOR_DRAW_REFERENCE") != nullptr) {
    std::ofstream(reference, std::ios::binary)
        .write(reinterpret_cast<const char*>(paper.data()),
               static_cast<std::streamsize>(paper.size()));
    GTEST_SKIP() << "drew " << reference;
  }
  const std::string file = contentsOf(reference);
  const Difference difference =
      differenceOf({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()}, paper);
  // Another version of the font libraries moves the edge of some letters by a dot.
  EXPECT_TRUE(difference.sameSize);
  EXPECT_GT(difference.dark, 5000U);
  EXPECT_LT(difference.different, difference.dark / 20);
}

// A missing script must be noticed; otherwise the test above shows nothing.
TEST(TextInTenScripts, DiffersFromTheReferenceImageIfAScriptIsMissing) {
  std::string text = contentsOf("examples/ten-scripts.txt");
  const std::size_t line = text.find("Thai");
  text.replace(line, text.find('\n', line) - line, "Thai");
  const std::string file = contentsOf(reference);
  const Difference difference =
      differenceOf({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()},
                   paperOf(rendered(text).job));
  EXPECT_GE(difference.different, difference.dark / 20);
}

}  // namespace
}  // namespace quordalvane::render
