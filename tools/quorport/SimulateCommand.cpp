#include "tools/quorport/Commands.h"

namespace quordalvane::tool {
Report simulate(const Options&, const Surroundings&) {
  throw Failure(ExitCode::Usage, "not yet");
}
}  // namespace quordalvane::tool
