#pragma once

#include "tools/quorport/RenderOptions.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quordalvane::tool {

/// The options for the kind of a file and the commands printed around it, added as the other
/// commands' are. `file` is the option with the name of the file, which a test page does without.
void addRenderOptions(CLI::App& app, RenderOptions& options, CLI::Option& file);

}  // namespace quordalvane::tool
