#pragma once

#include "tools/quorport/RenderOptions.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quordalvane::tool {

/// Adds the options for printing a file: its kind, the width of the paper, the paper cut and the
/// cash drawer. Works like the functions of OptionGrammar.h. `file` is the option that names the
/// file; if a test page is printed, this option is not required.
void addRenderOptions(CLI::App& app, RenderOptions& options, CLI::Option& file);

}  // namespace quordalvane::tool
