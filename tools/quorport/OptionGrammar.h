#pragma once

#include "tools/quorport/Options.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

// Each function adds options to the parser `app`. While `app` parses, it writes the values into
// `options`, and throws CLI::ValidationError for a wrong value. `app` and `options` must outlive
// the parsing.

void addGlobalOptions(CLI::App& app, Options& options);
void addStatusOptions(CLI::App& app, Options& options);
void addPrintOptions(CLI::App& app, Options& options);
void addMonitorOptions(CLI::App& app, Options& options);
void addDoctorOptions(CLI::App& app, Options& options);
void addSimulateOptions(CLI::App& app, Options& options);

}  // namespace quordalvane::tool
