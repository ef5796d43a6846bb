#pragma once

#include <string>

#include "job/PrintJob.h"

namespace quordalvane {

/// The next step for a person after a job that ended so. "" if it was printed.
std::string adviceFor(const PrintResult& result);

}  // namespace quordalvane
