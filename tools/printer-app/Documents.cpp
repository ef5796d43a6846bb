#include "tools/printer-app/Documents.h"

#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "render/PicturePrinting.h"
#include "render/PictureSize.h"
#include "render/RasterPage.h"
#include "render/RenderError.h"
#include "render/TextPrinting.h"
#include "tools/printer-app/Document.h"
#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/Model.h"
#include "tools/printer-app/WholeUploads.h"

namespace quordalvane::printer_app {
namespace {

unsigned headDots(pappl_job_t* job) {
  const Model* const model = modelNamed(papplPrinterGetDriverName(papplJobGetPrinter(job)));
  return model == nullptr ? everyModel().front().dots : model->dots;
}

/// A job of raster pages, whose rows arrive one by one.
class RasterJob {
 public:
  RasterJob(pappl_job_t* job, const pappl_pr_options_t& options)
      : document_(job, options, Document::Kind::Rendered), head_(headDots(job)) {}

  void startPage(const pappl_pr_options_t& options) {
    width_ = options.header.cupsWidth;
    missingRows_ = options.header.cupsHeight;
    render::checkSize(width_, missingRows_);
    document_.reserve(render::RasterPage::mostBytes(missingRows_, head_));
    page_.emplace(width_, head_, document_.output());
  }

  void addRow(const unsigned char* row) {
    page_->add({row, width_});
    --missingRows_;
  }

  // The framework also calls this for a page whose last rows are missing.
  void endPage() {
    require(missingRows_ == 0);
    page_->end();
    document_.endPage();
  }

  // The client itself repeats the pages for copies. The framework also calls this if the client has
  // left between two pages.
  const std::vector<std::uint8_t>& end() {
    require(!isUploadCutShort());
    return document_.end(1);
  }

 private:
  static void require(bool isWhole) {
    if (!isWhole) {
      throw render::RenderError("the document is cut short: nothing was printed");
    }
  }

  Document document_;
  const unsigned head_;
  unsigned width_ = 0;
  unsigned missingRows_ = 0;
  std::optional<render::RasterPage> page_;
};

RasterJob* rasterOf(pappl_job_t* job) {
  return static_cast<RasterJob*>(papplJobGetData(job));
}

// The framework is written in C: an exception becomes the job's message, and the result is false.
template <typename Work>
bool guarded(pappl_job_t* job, Work work) {
  try {
    return work();
  } catch (const std::exception& error) {
    papplJobSetMessage(job, "%s", error.what());
    return false;
  }
}

std::unique_ptr<RasterJob> takeRaster(pappl_job_t* job) {
  std::unique_ptr<RasterJob> raster(rasterOf(job));
  papplJobSetData(job, nullptr);
  return raster;
}

// Calls `work` with the raster of the job. After an error it drops the raster, so that nothing of
// it is printed.
template <typename Work>
bool withRaster(pappl_job_t* job, Work work) {
  const bool isDone = rasterOf(job) != nullptr && guarded(job, [&] {
                        work(*rasterOf(job));
                        return true;
                      });
  if (!isDone) {
    takeRaster(job);
  }
  return isDone;
}

bool startJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/) {
  return guarded(job, [&] {
    papplJobSetData(job, new RasterJob(job, *options));
    return true;
  });
}

bool startPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/,
               unsigned /*page*/) {
  return withRaster(job, [&](RasterJob& raster) { raster.startPage(*options); });
}

bool writeLine(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
               unsigned /*y*/, const unsigned char* line) {
  return withRaster(job, [&](RasterJob& raster) { raster.addRow(line); });
}

bool endPage(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
             unsigned /*page*/) {
  return withRaster(job, [](RasterJob& raster) { raster.endPage(); });
}

// The framework also calls this after an error, and again after it has returned false.
bool endJob(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/) {
  const std::unique_ptr<RasterJob> raster = takeRaster(job);
  return raster != nullptr && guarded(job, [&] { return deliver(job, raster->end()); });
}

bool printFile(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/) {
  return guarded(job, [&] {
    Document document(job, *options, Document::Kind::Raw);
    readDocument(job, document.output());
    return deliver(job, document.end(options->copies));
  });
}

// Prints a document that `render` draws for a print head of the given width.
template <typename Render>
bool printRendered(pappl_job_t* job, Render render) {
  const std::unique_ptr<pappl_pr_options_t, void (*)(pappl_pr_options_t*)> options(
      papplJobCreatePrintOptions(job, 1, false), papplJobDeletePrintOptions);
  return guarded(job, [&] {
    Document document(job, *options, Document::Kind::Rendered);
    render(headDots(job), document.output());
    document.endPage();
    return deliver(job, document.end(options->copies));
  });
}

void tellMissing(pappl_job_t* job, const std::set<char32_t>& missing) {
  for (const char32_t character : missing) {
    papplLogJob(job, PAPPL_LOGLEVEL_WARN, "No font of this machine has U+%04X: a box is printed",
                static_cast<unsigned>(character));
  }
}

bool printText(pappl_job_t* job, pappl_device_t* /*device*/, void* /*data*/) {
  return printRendered(job, [job](unsigned head, const render::Output& output) {
    render::TextPrinting text(head, render::CodePage(), output);
    readDocument(job, [&text](render::ByteView piece) {
      text.add({reinterpret_cast<const char*>(piece.data()), piece.size()});
    });
    text.end();
    tellMissing(job, text.missing());
  });
}

bool printPicture(pappl_job_t* job, pappl_device_t* /*device*/, void* /*data*/) {
  return printRendered(job, [job](unsigned head, const render::Output& output) {
    render::printPicture(wholeDocument(job), head, render::DitherKind::FloydSteinberg, output);
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

void addOtherDocuments(pappl_system_t* system) {
  papplSystemAddMIMEFilter(system, "text/plain", "image/pwg-raster", printText, nullptr);
  // The framework's own filters convert to raster. These filters have precedence, and print exactly
  // as the command `quorport` does.
  for (const char* const commands : commandTypes) {
    papplSystemAddMIMEFilter(system, "image/png", commands, printPicture, nullptr);
    papplSystemAddMIMEFilter(system, "image/jpeg", commands, printPicture, nullptr);
  }
}

}  // namespace quordalvane::printer_app
