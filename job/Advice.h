#pragma once

#include <string>

#include "job/PrintJob.h"

namespace quordalvane {

/// What a person may do after a job that ended so. "" when it was printed.
std::string adviceFor(const PrintResult& result);

}  // namespace quordalvane
