#pragma once

#include <string>

#include "job/PrintJob.h"

namespace quordalvane {

/// Returns advice on the next step for a person whose job ended with `result`. Returns "" if the
/// job was printed.
std::string adviceFor(const PrintResult& result);

}  // namespace quordalvane
