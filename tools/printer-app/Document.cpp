#include "tools/printer-app/Document.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include "render/PrinterCommands.h"
#include "render/RenderError.h"

namespace quordalvane::printer_app {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The size of the largest job in bytes. This is far more than any receipt has, but little enough
// for the machine's memory.
constexpr std::size_t largestDocument = std::size_t{64} << 20U;
constexpr std::size_t pieceSize = std::size_t{64} << 10U;

std::string optionOf(const pappl_pr_options_t& options, const char* name, const char* usual) {
  const char* const value = cupsGetOption(name, options.num_vendor, options.vendor);
  return value == nullptr ? usual : value;
}

std::string cutOf(pappl_job_t* job, const pappl_pr_options_t& options, Document::Kind kind) {
  const bool isAsked = papplJobGetAttribute(job, "quor-cut") != nullptr;
  return kind == Document::Kind::Raw && !isAsked ? "none"
                                                 : optionOf(options, "quor-cut", "document");
}

}  // namespace

Document::Document(pappl_job_t* job, const pappl_pr_options_t& options, Kind kind)
    : cut_(cutOf(job, options, kind)) {
  const std::string drawer = optionOf(options, "quor-drawer", "none");
  if (drawer == "drawer-1" || drawer == "drawer-2") {
    append(render::openDrawer(drawer == "drawer-1" ? 1 : 2));
  }
  if (kind == Kind::Rendered) {
    append(render::initialize);
  }
  copyBegins_ = std::ssize(bytes_);
}

void Document::reserve(std::size_t bytes) {
  bytes_.reserve(bytes_.size() + std::min(bytes, largestDocument));
}

render::Output Document::output() {
  return [this](render::ByteView bytes) { append(bytes); };
}

void Document::endPage() {
  ++pages_;
  if (cut_ == "page") {
    append(render::cutPaper);
  }
}

const Bytes& Document::end(int copies) {
  if (cut_ == "document") {
    append(render::cutPaper);
  }
  if (copies > 1) {
    const Bytes copy(bytes_.begin() + copyBegins_, bytes_.end());
    for (int more = 1; more < copies; ++more) {
      append(copy);
    }
  }
  if (cut_ == "job") {
    append(render::cutPaper);
  }
  return bytes_;
}

void Document::append(render::ByteView bytes) {
  if (bytes.size() > largestDocument - bytes_.size()) {
    throw render::RenderError("the job is larger than 64 MiB");
  }
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

void readDocument(pappl_job_t* job, const render::Output& take) {
  std::ifstream file(papplJobGetFilename(job), std::ios::binary);
  std::array<char, pieceSize> piece;
  while (file.read(piece.data(), piece.size()) || file.gcount() > 0) {
    take({reinterpret_cast<const std::uint8_t*>(piece.data()),
          static_cast<std::size_t>(file.gcount())});
  }
  if (!file.eof()) {
    throw render::RenderError("the document cannot be read");
  }
}

Bytes wholeDocument(pappl_job_t* job) {
  Bytes contents;
  readDocument(job, [&contents](render::ByteView piece) {
    if (piece.size() > largestDocument - contents.size()) {
      throw render::RenderError("the document is larger than 64 MiB");
    }
    contents.insert(contents.end(), piece.begin(), piece.end());
  });
  return contents;
}

}  // namespace quordalvane::printer_app
