#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "render/Output.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// The commands of a job, collected until it is delivered: its pages, and around them the drawer,
/// the copies and the cuts that the job asks for.
///
/// | `quor-cut` | cuts |
/// |---|---|
/// | `document` | after each copy; the default |
/// | `job` | once, after the last copy |
/// | `page` | after each page |
/// | `none` | never |
///
/// A job that is too large for the machine throws RenderError, wherever it becomes so.
class Document {
 public:
  /// Rendered by us, or the printer's own commands. These are cut only if the job itself says so,
  /// and nothing is printed before them but the drawer's command.
  enum class Kind { Rendered, Raw };

  Document(pappl_job_t* job, const pappl_pr_options_t& options, Kind kind);

  /// Takes memory for so many bytes at once: a long page would be copied as it grows otherwise.
  void reserve(std::size_t bytes);

  /// Adds what it is handed; valid as long as this is.
  render::Output output();

  void endPage();

  /// Adds copies and cuts. Called once, after the last page.
  const std::vector<std::uint8_t>& end(int copies);

 private:
  void append(render::ByteView bytes);

  std::string cut_;
  std::ptrdiff_t copyBegins_ = 0;
  std::vector<std::uint8_t> bytes_;
};

/// The file of the job's document, piece by piece. Throws RenderError if it cannot be read or is
/// larger than any job.
/// @{
void readDocument(pappl_job_t* job, const render::Output& take);
std::vector<std::uint8_t> wholeDocument(pappl_job_t* job);
/// @}

}  // namespace quordalvane::printer_app
