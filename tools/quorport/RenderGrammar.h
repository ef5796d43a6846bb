#pragma once

#include "tools/quorport/RenderOptions.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

/// The options for the kind of a file and the commands printed around it, added as the other
/// commands' are.
void addRenderOptions(CLI::App& app, RenderOptions& options);

}  // namespace quordalvane::tool
