#pragma once

#include "tools/quorport/RenderOptions.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quordalvane::tool {

/// Adds the options for the kind of a file and for the commands printed around it; works like the
/// functions of OptionGrammar.h. `file` is the option that names the file; a test page needs no
/// file.
void addRenderOptions(CLI::App& app, RenderOptions& options, CLI::Option& file);

}  // namespace quordalvane::tool
