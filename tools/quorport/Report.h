#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// What the command's exit status means; scripts rely on it.
enum class ExitCode : int {
  Done = 0,
  ExchangeFailed = 1,
  Usage = 2,
  NoAccessory = 3,  ///< none matched, or it could not be opened
  NotReady = 4,     ///< the printer is off line, has paper in its exit or is in use
  LinkLost = 5,
  Unconfirmed = 6,
  NoJournal = 7,      ///< the journal of jobs cannot be kept, and nothing was sent
  Interrupted = 130,  ///< by SIGINT; any other signal that ends a command is 128 + its number, too
};

/// The exit status of a command that a signal ended, as shells have it.
constexpr ExitCode codeOfSignal(int signal) {
  return static_cast<ExitCode>(128 + signal);
}

using Json = nlohmann::ordered_json;

/// Ends a command that cannot do its task.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

/// The result of a command in both forms.
struct Report {
  ExitCode code = ExitCode::Done;
  Json json = Json::object();  ///< empty if nothing is left to report
  std::string text;            ///< for people, lines that end in a line feed
  std::string error;           ///< why it failed, for people; "" if it did not
};

/// The report of a command that did its task, with a line for people.
Report done(const std::string& line);

/// The report of a command that failed, with nothing else in it.
Report failed(ExitCode code, const std::string& error);

/// Adds the failure to the report.
void setFailed(Report& report, ExitCode code, const std::string& error);

/// The device in front of a text for people: "tcp:192.0.2.10:9100: "; "" for null.
std::string labelOf(const std::optional<std::string>& device);

/// Writes the name of the device into a report that says anything: as `device` of the object, and
/// in front of the texts for people. Null changes nothing.
void nameDevice(Report& report, const std::optional<std::string>& device);

/// Writes the report: its text, or with `asJson` its object, to standard output; its error to
/// standard error. False if standard output did not take it; standard error then names the cause.
bool deliver(const Report& report, bool asJson, const Streams& streams);

/// Writes a line for people to standard error, after the command's name.
void complain(const std::string& line, const Streams& streams);

/// The object as JSON without a line feed; no control character is in it raw, invalid bytes are
/// replaced.
std::string inOneLine(const Json& json);

/// Outside text for people: control characters escaped, invalid bytes replaced.
std::string printable(std::string_view text);

/// The same in quotation marks, cut short after 60 bytes.
std::string inQuotes(std::string_view text);

}  // namespace quordalvane::tool
