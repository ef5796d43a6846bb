#pragma once

#include <string>
#include <vector>

#include "simulator/JobRecord.h"
#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// The report to the user about a job of a virtual printer.
struct JobReport {
  unsigned long job = 0;  ///< its number, from 1
  std::string printer;    ///< its name, or the device text of the place that received the job
  bool ok = true;
  std::vector<std::string> files;
};

/// The report and the record of the job as one JSON object.
Json inJson(const JobReport& report, const simulator::JobRecord& record);

}  // namespace quordalvane::tool
