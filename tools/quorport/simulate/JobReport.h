#pragma once

#include <string>
#include <vector>

#include "simulator/JobRecord.h"
#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// A job of a virtual printer as users see it.
struct JobReport {
  unsigned long job = 0;  ///< its number, from 1
  std::string printer;    ///< its name, or the SPEC of the place where it was received
  bool ok = true;
  std::vector<std::string> files;
};

/// The report and the record of the job as one object.
Json inJson(const JobReport& report, const simulator::JobRecord& record);

}  // namespace quordalvane::tool
