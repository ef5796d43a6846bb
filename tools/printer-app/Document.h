#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "render/Output.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Collects the commands of a job until the whole job can be sent: the pages, and the drawer
/// pulses, copies and cuts that the job asks for.
///
/// | `quor-cut` | cuts |
/// |---|---|
/// | `document` | after each copy; the default |
/// | `job` | once, after the last copy |
/// | `page` | after each page |
/// | `none` | never |
///
/// Any call throws RenderError if the job exceeds the size limit of a job.
class Document {
 public:
  /// `Rendered`: pages that this program has drawn. `Raw`: the printer's own commands. Raw commands
  /// get a paper cut only if the job asks for one. Nothing but a drawer pulse is ever sent before
  /// them.
  enum class Kind { Rendered, Raw };

  Document(pappl_job_t* job, const pappl_pr_options_t& options, Kind kind);

  /// Reserves memory for this count of bytes, so that a long page is not copied several times.
  void reserve(std::size_t bytes);

  /// Returns a function that appends the bytes of its argument to the document. The document must
  /// outlive the function.
  render::Output output();

  void endPage();

  /// Returns how many pages have ended.
  int pages() const { return pages_; }

  /// Adds the copies and the paper cuts to the document, and returns the whole job. To be called
  /// once, after the last page.
  const std::vector<std::uint8_t>& end(int copies);

 private:
  void append(render::ByteView bytes);

  std::string cut_;
  std::ptrdiff_t copyBegins_ = 0;
  int pages_ = 0;
  std::vector<std::uint8_t> bytes_;
};

/// Read the file of the job's document: piece by piece, or as a whole. Throw RenderError if the
/// file cannot be read. `wholeDocument` also throws RenderError if the file exceeds the size limit
/// of a job.
void readDocument(pappl_job_t* job, const render::Output& take);
std::vector<std::uint8_t> wholeDocument(pappl_job_t* job);

}  // namespace quordalvane::printer_app
