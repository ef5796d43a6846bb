#pragma once

#include <string>

#include "job/PrintJob.h"

namespace quordalvane {

/// Returns the advice for a person whose job ended with `result`: what to do next. "" if the job
/// was printed.
std::string adviceFor(const PrintResult& result);

}  // namespace quordalvane
