#pragma once

#include "tools/quorport/Options.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

// The options that have to do with the journal of jobs, added as the other commands' are.

void addJournalOptions(CLI::App& app, PrintOptions& options);
void addJobsOptions(CLI::App& app, Options& options);

}  // namespace quordalvane::tool
