#include "tools/printer-app/Documents.h"

#include <exception>
#include <memory>
#include <set>

#include "render/PicturePrinting.h"
#include "render/RasterPage.h"
#include "render/RenderError.h"
#include "render/TextPrinting.h"
#include "text/Quoted.h"
#include "tools/printer-app/Document.h"
#include "tools/printer-app/IncompleteUploads.h"
#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/JobOrder.h"
#include "tools/printer-app/Model.h"
#include "tools/printer-app/RasterFile.h"
#include "tools/printer-app/WaitingRaster.h"

namespace quordalvane::printer_app {
namespace {

unsigned headDots(pappl_job_t* job) {
  const Model* const model = modelNamed(papplPrinterGetDriverName(papplJobGetPrinter(job)));
  return model == nullptr ? everyModel().front().dots : model->dots;
}

// Runs `work` if the document is complete. If `work` throws, its error becomes the job's message
// and the result is false, because the framework is written in C and cannot catch exceptions.
template <typename Work>
bool guarded(pappl_job_t* job, Work work) {
  try {
    const char* const file = papplJobGetFilename(job);
    if (file == nullptr) {
      throw render::RenderError("the job was canceled before it began");
    }
    if (isIncomplete(file)) {
      throw render::RenderError("the document is incomplete; print it again");
    }
    return work();
  } catch (const std::exception& error) {
    papplJobSetMessage(job, "%s", printable(error.what()).c_str());
    return false;
  }
}

// Prints the job with `work`, see `guarded`. The framework then starts the next job.
template <typename Work>
bool printInTurn(pappl_job_t* job, Work work) {
  const bool isPrinted = guarded(job, work);
  letOldestGoNext(papplJobGetPrinter(job));
  return isPrinted;
}

bool printFile(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/) {
  return printInTurn(job, [&] {
    Document document(job, *options, Document::Kind::Raw);
    readDocument(job, document.output());
    return deliver(job, document.end(options->copies));
  });
}

// Prints a document whose pages must be drawn. `addPages` draws them; its arguments are the
// document and the width of the print head in dots.
template <typename AddPages>
bool printRendered(pappl_job_t* job, AddPages addPages) {
  const std::unique_ptr<pappl_pr_options_t, void (*)(pappl_pr_options_t*)> options(
      papplJobCreatePrintOptions(job, 1, false), papplJobDeletePrintOptions);
  return printInTurn(job, [&] {
    Document document(job, *options, Document::Kind::Rendered);
    addPages(document, headDots(job));
    const bool isPrinted = deliver(job, document.end(options->copies));
    papplJobSetImpressionsCompleted(job, isPrinted ? document.pages() : 0);
    return isPrinted;
  });
}

void tellMissing(pappl_job_t* job, const std::set<char32_t>& missing) {
  for (const char32_t character : missing) {
    papplLogJob(job, PAPPL_LOGLEVEL_WARN, "No font of this machine has U+%04X: a box is printed",
                static_cast<unsigned>(character));
  }
}

bool printText(pappl_job_t* job, pappl_device_t* /*device*/, void* /*data*/) {
  return printRendered(job, [job](Document& document, unsigned head) {
    render::TextPrinting text(head, render::CodePage(), document.output());
    readDocument(job, [&text](render::ByteView piece) {
      text.add({reinterpret_cast<const char*>(piece.data()), piece.size()});
    });
    text.end();
    document.endPage();
    tellMissing(job, text.missing());
  });
}

bool printPicture(pappl_job_t* job, pappl_device_t* /*device*/, void* /*data*/) {
  return printRendered(job, [job](Document& document, unsigned head) {
    render::printPicture(wholeDocument(job), head, render::DitherKind::FloydSteinberg,
                         document.output());
    document.endPage();
  });
}

void addPage(RasterFile& raster, Document& document, unsigned head) {
  document.reserve(render::RasterPage::mostBytes(raster.height(), head));
  render::RasterPage page(raster.width(), head, document.output());
  for (unsigned row = 0; row < raster.height(); ++row) {
    page.add(raster.nextRow());
  }
  page.end();
  document.endPage();
}

bool printRaster(pappl_job_t* job, pappl_device_t* /*device*/, void* /*data*/) {
  return printRendered(job, [job](Document& document, unsigned head) {
    RasterFile raster(papplJobGetFilename(job));
    while (raster.nextPage()) {
      addPage(raster, document, head);
    }
    if (document.pages() == 0) {
      throw render::RenderError("the document has no pages");
    }
  });
}

// The framework requires these three functions, and calls them to print raster data while the data
// arrives. The functions refuse the data.
bool refuseJob(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/) {
  papplJobSetMessage(job, "%s", "raster data must be sent as image/pwg-raster or image/urf");
  return false;
}

bool refusePage(pappl_job_t* /*job*/, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
                unsigned /*page*/) {
  return false;
}

bool refuseLine(pappl_job_t* /*job*/, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
                unsigned /*y*/, const unsigned char* /*line*/) {
  return false;
}

}  // namespace

void addCommandDocuments(pappl_pr_driver_data_t& data) {
  data.printfile_cb = printFile;
  data.rstartjob_cb = data.rendjob_cb = refuseJob;
  data.rstartpage_cb = data.rendpage_cb = refusePage;
  data.rwriteline_cb = refuseLine;
}

void addRenderedDocuments(pappl_system_t* system) {
  papplSystemAddMIMEFilter(system, "text/plain", "image/pwg-raster", printText, nullptr);
  papplSystemAddMIMEFilter(system, waitingRasterType, "image/pwg-raster", printRaster, nullptr);
  // The framework has filters of its own, which convert pictures to raster. The filters that are
  // added here have precedence, and print pictures exactly as the command `quorport` does.
  for (const char* const commands : commandTypes) {
    papplSystemAddMIMEFilter(system, "image/png", commands, printPicture, nullptr);
    papplSystemAddMIMEFilter(system, "image/jpeg", commands, printPicture, nullptr);
  }
}

}  // namespace quordalvane::printer_app
