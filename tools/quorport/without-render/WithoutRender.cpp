// Replaces Rendering.cpp if the drawing libraries are missing.
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Rendering.h"
#include "tools/quorport/TextHint.h"

namespace quordalvane::tool {

std::vector<std::uint8_t> rendered(const std::vector<std::uint8_t>& contents,
                                   const RenderOptions& options, const Streams& streams) {
  if (options.content != RenderOptions::Content::Bytes || options.cut || options.drawer) {
    throw CommandFailure(ExitCode::Usage,
                         "this quorport was built without --text, --image, --cut and --drawer, "
                         "which need Pango, libjpeg and libpng; nothing was sent");
  }
  hintAtText(contents, streams);
  return contents;
}

}  // namespace quordalvane::tool
