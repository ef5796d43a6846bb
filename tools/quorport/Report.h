#pragma once

#include <optional>
#include <string>
#include <system_error>

#include "tools/quorport/ExitCode.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// The result of a command in both forms.
struct Report {
  ExitCode code = ExitCode::Done;
  JsonObject json;    ///< empty if nothing is left to report
  std::string text;   ///< for people, lines that end in a line feed
  std::string error;  ///< why it failed, for people; "" if it did not
};

/// The report of a command that did its task, with a line for people.
Report done(const std::string& line);

/// The report of a command that failed, with the failure alone in it.
Report failed(ExitCode code, const std::string& error);

/// Adds the failure to the report.
void setFailed(Report& report, ExitCode code, const std::string& error);

/// The device in front of a text for people: "tcp:192.0.2.10:9100: "; "" for null.
std::string labelOf(const std::optional<std::string>& device);

/// Writes the name of the device into a report that says anything: as `device` of the object, and
/// in front of the texts for people. Null changes nothing.
void nameDevice(Report& report, const std::optional<std::string>& device);

/// Writes the report: its text, or with `asJson` its object, to standard output; its error to
/// standard error. The error is why standard output did not take it, which standard error also
/// says.
std::error_code deliver(const Report& report, bool asJson, const Streams& streams);

}  // namespace quordalvane::tool
