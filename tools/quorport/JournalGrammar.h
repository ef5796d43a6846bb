#pragma once

#include "tools/quorport/Options.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

// Add the options for the journal, as the functions of OptionGrammar.h do for the others.

void addJournalOptions(CLI::App& app, PrintOptions& options);
void addJobsOptions(CLI::App& app, Options& options);

}  // namespace quordalvane::tool
