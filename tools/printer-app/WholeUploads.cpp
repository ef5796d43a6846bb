#include "tools/printer-app/WholeUploads.h"

#include <cups/http.h>

#include "tools/printer-app/LibraryFunction.h"

namespace quordalvane::printer_app {
namespace {

std::chrono::milliseconds limit;

using Read = ssize_t(http_t*, char*, std::size_t);

// Returns true while this program receives a client's request, and false for requests that this
// program sends as a client.
bool isUpload(http_t* http) {
  return httpGetState(http) == HTTP_STATE_POST_RECV;
}

bool isSilent(http_t* http) {
  return httpWait(http, static_cast<int>(limit.count())) == 0;
}

}  // namespace

void requireWholeUploads(std::chrono::seconds longestSilence) {
  limit = longestSilence;
}

}  // namespace quordalvane::printer_app

extern "C" [[gnu::visibility("default")]] ssize_t httpRead2(http_t* http, char* buffer,
                                                            std::size_t length) {
  using namespace quordalvane::printer_app;
  static auto* const read = libraryFunction<Read>("httpRead2");
  const bool wasUpload = isUpload(http);
  if (wasUpload && isSilent(http)) {
    return -1;
  }
  const ssize_t count = read(http, buffer, length);
  const bool isCutShort = wasUpload && count == 0 && isUpload(http);
  return isCutShort ? -1 : count;
}
