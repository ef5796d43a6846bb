#pragma once

#include "tools/quorport/RenderOptions.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

/// The options of what a file is and what is printed around it, added as the other commands' are.
void addRenderOptions(CLI::App& app, RenderOptions& options);

}  // namespace quordalvane::tool
