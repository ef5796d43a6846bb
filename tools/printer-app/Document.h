#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "render/Output.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// Collects the commands of a job until the whole job can be sent: the pages, and the drawer
/// pulses, copies and paper cuts that the job asks for.
///
/// | `quor-cut` | cuts the paper |
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
  /// get a paper cut only if the job asks for one. Only a drawer pulse may precede raw commands.
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

/// Reads the file of the job's document, and passes its bytes to `take`, piece by piece. Throws
/// RenderError if the file cannot be read.
void readDocument(pappl_job_t* job, const render::Output& take);

/// Returns the contents of the file of the job's document. Throws RenderError if the file cannot be
/// read or exceeds the size limit of a job.
std::vector<std::uint8_t> wholeDocument(pappl_job_t* job);

}  // namespace quordalvane::printer_app
