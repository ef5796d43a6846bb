#include "tools/printer-app/WholeUploads.h"

#include <cups/http.h>
#include <dlfcn.h>

namespace quordalvane::printer_app {
namespace {

std::chrono::milliseconds limit;
thread_local bool isCutShort = false;

using Read = ssize_t (*)(http_t*, char*, std::size_t);

Read librarysRead() {
  static const Read read = reinterpret_cast<Read>(::dlsym(RTLD_NEXT, "httpRead2"));
  return read;
}

// True while this program receives a client's request. False for its own requests as a client.
bool isUpload(http_t* http) {
  return httpGetState(http) == HTTP_STATE_POST_RECV;
}

}  // namespace

void requireWholeUploads(std::chrono::seconds longestSilence) {
  limit = longestSilence;
}

bool isUploadCutShort() {
  return isCutShort;
}

}  // namespace quordalvane::printer_app

extern "C" [[gnu::visibility("default")]] ssize_t httpRead2(http_t* http, char* buffer,
                                                            std::size_t length) {
  using namespace quordalvane::printer_app;
  if (!isUpload(http)) {
    isCutShort = false;
    return librarysRead()(http, buffer, length);
  }
  const bool isSilent = httpWait(http, static_cast<int>(limit.count())) == 0;
  const ssize_t count = isSilent ? -1 : librarysRead()(http, buffer, length);
  isCutShort = count < 0 || (count == 0 && isUpload(http));
  return isCutShort ? -1 : count;
}
