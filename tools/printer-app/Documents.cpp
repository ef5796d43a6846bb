#include "tools/printer-app/Documents.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "render/PrinterCommands.h"
#include "render/RasterBands.h"
#include "render/RenderError.h"
#include "render/TextPrinting.h"
#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/Model.h"

namespace quordalvane::printer_app {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Far above any receipt; small enough for the machine.
constexpr std::size_t largestJob = std::size_t{64} << 20U;

std::string optionOf(const pappl_pr_options_t& options, const char* name) {
  const char* const value = cupsGetOption(name, options.num_vendor, options.vendor);
  return value == nullptr ? "" : value;
}

unsigned headDots(pappl_job_t* job) {
  const Model* const model = modelNamed(papplPrinterGetDriverName(papplJobGetPrinter(job)));
  return model == nullptr ? everyModel().front().dots : model->dots;
}

/// The commands of a job, collected until it is delivered.
class Document {
 public:
  explicit Document(const pappl_pr_options_t& options) : cut_(optionOf(options, "quor-cut")) {
    const std::string drawer = optionOf(options, "quor-drawer");
    if (drawer == "drawer-1" || drawer == "drawer-2") {
      append(render::openDrawer(drawer == "drawer-1" ? 1 : 2));
    }
    append(render::initialize);
  }

  render::Output output() {
    return [this](render::ByteView bytes) { append(bytes); };
  }

  void endPage() {
    if (cut_ == "page") {
      append(render::cutPaper);
    }
  }

  const Bytes& end() {
    if (cut_ != "page" && cut_ != "none") {
      append(render::cutPaper);
    }
    return bytes_;
  }

 private:
  void append(render::ByteView bytes) {
    if (bytes_.size() + bytes.size() > largestJob) {
      throw render::RenderError("the job is larger than 64 MiB");
    }
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  }

  const std::string cut_;
  Bytes bytes_;
};

/// A job of raster pages. The paper is wider than the print head: the middle of each line is
/// printed.
class RasterJob {
 public:
  RasterJob(const pappl_pr_options_t& options, unsigned head) : document_(options), head_(head) {}

  void startPage(const pappl_pr_options_t& options) {
    lineBytes_ = options.header.cupsBytesPerLine;
    const unsigned width = options.header.cupsWidth;
    skipped_ = width > head_ ? ((width - head_) / 2 + 4) / 8 : 0;
    row_.resize(head_ / 8);
    bands_ = std::make_unique<render::RasterBands>(head_, document_.output());
  }

  void addLine(const unsigned char* line) {
    const std::size_t shown = std::min<std::size_t>(row_.size(), lineBytes_ - skipped_);
    std::ranges::fill(row_, std::uint8_t{0});
    std::memcpy(row_.data(), line + skipped_, shown);
    bands_->add(row_);
  }

  void endPage() {
    bands_->end();
    document_.endPage();
  }

  const Bytes& end() { return document_.end(); }

 private:
  Document document_;
  const unsigned head_;
  std::size_t lineBytes_ = 0;
  std::size_t skipped_ = 0;  // bytes at the left of each line
  Bytes row_;
  std::unique_ptr<render::RasterBands> bands_;
};

RasterJob* rasterOf(pappl_job_t* job) {
  return static_cast<RasterJob*>(papplJobGetData(job));
}

// The framework is C: an error becomes the job's message, and false.
template <typename Work>
bool guarded(pappl_job_t* job, Work work) {
  try {
    return work();
  } catch (const std::exception& error) {
    papplJobSetMessage(job, "%s", error.what());
    return false;
  }
}

bool startJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/) {
  return guarded(job, [&] {
    papplJobSetData(job, new RasterJob(*options, headDots(job)));
    return true;
  });
}

bool startPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/,
               unsigned /*page*/) {
  return guarded(job, [&] {
    rasterOf(job)->startPage(*options);
    return true;
  });
}

bool writeLine(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
               unsigned /*y*/, const unsigned char* line) {
  return guarded(job, [&] {
    rasterOf(job)->addLine(line);
    return true;
  });
}

bool endPage(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
             unsigned /*page*/) {
  return guarded(job, [&] {
    rasterOf(job)->endPage();
    return true;
  });
}

// The framework calls this again after it has returned false: the job is delivered once.
bool endJob(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/) {
  const std::unique_ptr<RasterJob> raster(rasterOf(job));
  papplJobSetData(job, nullptr);
  return raster != nullptr && guarded(job, [&] { return deliver(job, raster->end()); });
}

std::string contentsOf(pappl_job_t* job) {
  std::ifstream file(papplJobGetFilename(job), std::ios::binary);
  if (!file) {
    throw render::RenderError("the document cannot be read");
  }
  std::string contents(largestJob + 1, '\0');
  file.read(contents.data(), static_cast<std::streamsize>(contents.size()));
  contents.resize(static_cast<std::size_t>(file.gcount()));
  if (contents.size() > largestJob) {
    throw render::RenderError("the document is larger than 64 MiB");
  }
  return contents;
}

bool printFile(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/) {
  return guarded(job, [&] {
    const std::string contents = contentsOf(job);
    return deliver(job, Bytes(contents.begin(), contents.end()));
  });
}

bool printText(pappl_job_t* job, pappl_device_t* /*device*/, void* /*data*/) {
  const std::unique_ptr<pappl_pr_options_t, void (*)(pappl_pr_options_t*)> options(
      papplJobCreatePrintOptions(job, 1, false), papplJobDeletePrintOptions);
  return guarded(job, [&] {
    Document document(*options);
    render::TextPrinting text(headDots(job), render::CodePage(), document.output());
    text.add(contentsOf(job));
    text.end();
    document.endPage();
    return deliver(job, document.end());
  });
}

}  // namespace

void addRasterDocuments(pappl_pr_driver_data_t& data) {
  data.rstartjob_cb = startJob;
  data.rstartpage_cb = startPage;
  data.rwriteline_cb = writeLine;
  data.rendpage_cb = endPage;
  data.rendjob_cb = endJob;
  data.printfile_cb = printFile;
}

void addTextDocuments(pappl_system_t* system) {
  papplSystemAddMIMEFilter(system, "text/plain", "image/pwg-raster", printText, nullptr);
}

}  // namespace quordalvane::printer_app
