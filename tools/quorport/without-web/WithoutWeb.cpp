// Replaces the web page if the library that serves it is missing. The option --web still exists,
// but fails with an error that names the reason.
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/simulate/Audience.h"

namespace quordalvane::tool {

std::unique_ptr<Audience> openWeb(std::unique_ptr<Listener> /*place*/,
                                  std::list<Station>& /*stations*/, Control& /*control*/) {
  throw CommandFailure(ExitCode::Usage,
                       "--web: this program was built without the web page, which needs "
                       "libmicrohttpd-dev");
}

}  // namespace quordalvane::tool
