#include "tools/printer-app/WaitingRaster.h"

#include <cups/cups.h>

#include <array>
#include <string_view>

#include "tools/printer-app/LibraryFunction.h"

namespace quordalvane::printer_app {

const char* const waitingRasterType = "application/vnd.quordalvane-raster";

namespace {

constexpr std::string_view anyFormat = "application/octet-stream";

std::string_view formatIn(ipp_t* request) {
  const char* const format =
      ippGetString(ippFindAttribute(request, "document-format", IPP_TAG_MIMETYPE), 0, nullptr);
  return format == nullptr ? anyFormat : format;
}

// Returns true if the document that follows the request begins like raster data.
bool beginsAsRaster(http_t* http) {
  std::array<char, 8> beginning{};
  const ssize_t count = httpPeek(http, beginning.data(), beginning.size());
  const std::string_view found(beginning.data(), static_cast<std::size_t>(count < 0 ? 0 : count));
  using namespace std::string_view_literals;
  return found == "RaS2PwgR"sv || found == "UNIRAST\0"sv;
}

bool hasRaster(http_t* http, ipp_t* request) {
  if (httpGetState(http) != HTTP_STATE_POST_RECV) {
    return false;  // no document follows, or this program reads the answer to a request of its own
  }
  const std::string_view format = formatIn(request);
  return format == "image/pwg-raster" || format == "image/urf" ||
         (format == anyFormat && beginsAsRaster(http));
}

}  // namespace
}  // namespace quordalvane::printer_app

extern "C" [[gnu::visibility("default")]] ipp_state_t ippRead(http_t* http, ipp_t* request) {
  using namespace quordalvane::printer_app;
  static auto* const read = libraryFunction<ipp_state_t(http_t*, ipp_t*)>("ippRead");
  const ipp_state_t state = read(http, request);
  if (state == IPP_STATE_DATA && hasRaster(http, request)) {
    ippAddString(request, IPP_TAG_JOB, IPP_TAG_MIMETYPE, "document-format-detected", nullptr,
                 waitingRasterType);
  }
  return state;
}
