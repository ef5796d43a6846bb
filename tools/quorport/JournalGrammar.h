#pragma once

#include "tools/quorport/Options.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

// These functions add the options for the journal. They have the same parameters as the functions
// in OptionGrammar.h.

void addJournalOptions(CLI::App& app, PrintOptions& options);
void addJobsOptions(CLI::App& app, Options& options);

}  // namespace quordalvane::tool
