#pragma once

#include <string>
#include <vector>

#include "simulator/JobRecord.h"
#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// The report to the user about a job of a virtual printer.
struct JobReport {
  unsigned long job = 0;  ///< the job's number, from 1
  std::string printer;    ///< the printer's name; its address if it has no name
  bool ok = true;
  std::vector<std::string> files;
};

/// Returns the report and the record of the job as one JSON object.
Json inJson(const JobReport& report, const simulator::JobRecord& record);

}  // namespace quordalvane::tool
