#include "tools/quorport/Rendering.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <span>
#include <string>

#include "render/CodePage.h"
#include "render/PicturePrinting.h"
#include "render/PrinterCommands.h"
#include "render/RenderError.h"
#include "render/TestPage.h"
#include "render/TextPrinting.h"
#include "tools/process/WholeInput.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/TextHint.h"

namespace quordalvane::tool {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Content = RenderOptions::Content;

constexpr std::size_t mostNamed = 8;

void tellMissing(const std::set<char32_t>& missing, const Streams& streams) {
  if (missing.empty()) {
    return;
  }
  std::string names;
  for (auto c = missing.begin(); c != missing.end() && names.size() < mostNamed * 8; ++c) {
    char name[16] = {};
    std::snprintf(name, sizeof name, " U+%04X", static_cast<unsigned>(*c));
    names += name;
  }
  complain("no font on this machine has" + names +
               (missing.size() > mostNamed ? " and others" : "") +
               ": each of these characters is printed as a box with its number; Debian's "
               "fonts-noto-core and fonts-noto-cjk have most characters",
           streams);
}

// Returns an output that appends to the job, up to the largest size of a job. A file below this
// limit can become a job above it, because a drawn character has more bytes than a character in the
// file.
render::Output into(Bytes& job) {
  return [&job](std::span<const std::uint8_t> bytes) {
    if (job.size() + bytes.size() > largestJob) {
      throw render::RenderError("the job is larger than 256 MiB");
    }
    job.insert(job.end(), bytes.begin(), bytes.end());
  };
}

render::CodePage codePage(const RenderOptions& options) {
  return options.codePage ? render::CodePage(*options.codePage) : render::CodePage();
}

void addText(const Bytes& contents, const RenderOptions& options, const Streams& streams,
             Bytes& job) {
  render::TextPrinting text(options.width, codePage(options), into(job));
  text.add({reinterpret_cast<const char*>(contents.data()), contents.size()});
  text.end();
  tellMissing(text.missing(), streams);
}

void addContents(const Bytes& contents, const RenderOptions& options, const Streams& streams,
                 Bytes& job) {
  switch (options.content) {
    case Content::Bytes:
      hintAtText(contents, streams);
      into(job)(contents);
      break;
    case Content::Text:
      into(job)(render::initialize);
      addText(contents, options, streams, job);
      break;
    case Content::TestPage:
      into(job)(render::initialize);
      render::printTestPage(codePage(options), options.width, into(job));
      break;
    case Content::Picture:
      into(job)(render::initialize);
      render::printPicture(
          contents, options.width,
          options.isOrdered ? render::DitherKind::Ordered : render::DitherKind::FloydSteinberg,
          into(job));
      break;
  }
}

void addDrawer(const RenderOptions& options, bool isAfter, Bytes& job) {
  if (options.drawer && options.drawerAfter == isAfter) {
    into(job)(render::openDrawer(*options.drawer));
  }
}

}  // namespace

Bytes rendered(const Bytes& contents, const RenderOptions& options, const Streams& streams) {
  Bytes job;
  try {
    addDrawer(options, false, job);
    addContents(contents, options, streams, job);
    if (options.cut) {
      into(job)(render::cutPaper);
    }
    addDrawer(options, true, job);
  } catch (const render::RenderError& error) {
    throw CommandFailure(ExitCode::Usage, std::string(error.what()) + "; nothing was sent");
  }
  return job;
}

}  // namespace quordalvane::tool
