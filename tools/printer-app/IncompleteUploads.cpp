#include "tools/printer-app/IncompleteUploads.h"

#include <cups/http.h>
#include <sys/socket.h>

#include <array>
#include <fstream>
#include <string_view>

#include "tools/printer-app/LibraryFunction.h"

namespace quordalvane::printer_app {
namespace {

std::chrono::milliseconds limit;

// The last bytes of each incomplete document. No complete document ends with them by chance.
using namespace std::string_view_literals;
constexpr std::string_view mark = "\0the client disconnected before the end of this document\0"sv;

// Each connection has a thread of its own.
thread_local bool isConnectionEnded = false;

using Read = ssize_t(http_t*, char*, std::size_t);

// Returns true while this program receives a client's request, and false for requests that this
// program sends as a client.
bool isUpload(http_t* http) {
  return httpGetState(http) == HTTP_STATE_POST_RECV;
}

bool isSilent(http_t* http) {
  return httpWait(http, static_cast<int>(limit.count())) == 0;
}

void endConnection(http_t* http) {
  ::shutdown(httpGetFd(http), SHUT_RDWR);
  isConnectionEnded = true;
}

// Ends the connection. Writes the mark of an incomplete document into `buffer`, as the last data of
// the document, and returns the length of the mark; -1 if the buffer is too small.
ssize_t endUpload(http_t* http, char* buffer, std::size_t length) {
  endConnection(http);
  return length < mark.size() ? -1 : static_cast<ssize_t>(mark.copy(buffer, mark.size()));
}

}  // namespace

void markIncompleteUploads(std::chrono::seconds longestSilence) {
  limit = longestSilence;
}

bool isIncomplete(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  in.seekg(-static_cast<std::streamoff>(mark.size()), std::ios::end);
  std::array<char, mark.size()> end{};
  in.read(end.data(), static_cast<std::streamsize>(end.size()));
  return std::string_view(end.data(), end.size()) == mark;
}

}  // namespace quordalvane::printer_app

extern "C" [[gnu::visibility("default")]] ssize_t httpRead2(http_t* http, char* buffer,
                                                            std::size_t length) {
  using namespace quordalvane::printer_app;
  static auto* const read = libraryFunction<Read>("httpRead2");
  if (isConnectionEnded) {
    return 0;
  }
  if (!isUpload(http)) {
    return read(http, buffer, length);
  }
  const ssize_t count = isSilent(http) ? -1 : read(http, buffer, length);
  const bool isCutShort = count < 0 || (count == 0 && httpError(http) != 0);
  return isCutShort ? endUpload(http, buffer, length) : count;
}

// The framework waits with this function for the first byte of a document.
extern "C" [[gnu::visibility("default")]] ssize_t httpPeek(http_t* http, char* buffer,
                                                           std::size_t length) {
  using namespace quordalvane::printer_app;
  static auto* const peek = libraryFunction<Read>("httpPeek");
  if (isUpload(http) && isSilent(http)) {
    endConnection(http);
  }
  return isConnectionEnded ? 0 : peek(http, buffer, length);
}
