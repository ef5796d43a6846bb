#pragma once

#include <optional>
#include <string>
#include <system_error>

#include "tools/quorport/ExitCode.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// The result of a command, as JSON and as text.
struct Report {
  ExitCode code = ExitCode::Done;
  JsonObject json;    ///< the result; empty if nothing remains to be reported
  std::string text;   ///< for people: lines that end in a line feed
  std::string error;  ///< for people: the reason of the failure; "" on success
};

/// Returns the report of a command that succeeded, with one line for people.
Report done(const std::string& line);

/// Returns the report of a command that failed, which contains only the failure.
Report failed(ExitCode code, const std::string& error);

/// Adds the failure to the report.
void setFailed(Report& report, ExitCode code, const std::string& error);

/// Returns the prefix that names the device in a text for people: "tcp:192.0.2.10:9100: "; "" if
/// `device` is empty.
std::string labelOf(const std::optional<std::string>& device);

/// Adds the name of the device to each member of the report that is not empty: to `json` as the
/// member `device`, to `text` and `error` as a prefix. Does nothing if `device` is empty.
void nameDevice(Report& report, const std::optional<std::string>& device);

/// Writes the report's text, or with `asJson` the report's object, to standard output, and the
/// report's error to standard error. If standard output cannot be written, returns the reason and
/// reports it on standard error.
std::error_code deliver(const Report& report, bool asJson, const Streams& streams);

}  // namespace quordalvane::tool
