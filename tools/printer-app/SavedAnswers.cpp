#include "tools/printer-app/SavedAnswers.h"

#include "tools/printer-app/LibraryFunction.h"
#include "tools/printer-app/SavedState.h"

namespace quordalvane::printer_app {
namespace {

pappl_system_t* savedSystem = nullptr;
std::filesystem::path savedFile;

// Returns true for an answer, and false for a request, which this program sends as a client.
bool isAnswer(http_t* http) {
  return httpGetState(http) == HTTP_STATE_POST_SEND;
}

}  // namespace

void saveBeforeAnswers(pappl_system_t* system, const std::filesystem::path& file) {
  savedSystem = system;
  savedFile = file;
}

}  // namespace quordalvane::printer_app

extern "C" [[gnu::visibility("default")]] ipp_state_t ippWrite(http_t* http, ipp_t* message) {
  using namespace quordalvane::printer_app;
  static auto* const write = libraryFunction<ipp_state_t(http_t*, ipp_t*)>("ippWrite");
  if (savedSystem != nullptr && isAnswer(http)) {
    saveChangedJobs(savedSystem, savedFile);
  }
  return write(http, message);
}
