#include "tests/model/Bounds.h"

#include <algorithm>
#include <optional>
#include <sstream>

namespace quordalvane::test {
namespace {

constexpr double slice = 0.1;        // one run of the run loop, in seconds
constexpr double retryPause = 0.05;  // between two tries of a write, a status or a block's begin
constexpr double endPause = 0.1;
constexpr double pollPause = 0.2;
constexpr double guardTimes = 1.0 + 1.5;
constexpr double moduleLimit = 10;
constexpr int commandAttempts = 2;
constexpr int statusReads = 10;

/// The bounds of a port's operations; each bound is the sum of the waits and the calls of its
/// operation.
class Bounds {
 public:
  explicit Bounds(const Scenario& scenario)
      : emulation_(scenario.creation.emulation),
        limit_(scenario.creation.timeout / 1000),
        end_(scenario.endMillis.value_or(scenario.creation.timeout) / 1000),
        hold_(scenario.holdMillis.value_or(0) / 1000),
        closePause_(std::stod(scenario.systemVersion.value_or("0")) < 10 ? 0 : endPause) {}

  double of(const Operation& operation) const;

 private:
  static double wait(double limit, double pause) { return limit + 1 + pause + slice; }

  double command() const { return wait(limit_, retryPause); }

  double status() const {
    if (emulation_ == lineMode) {
      return slice + commandAttempts * (command() + statusReads * (slice + retryPause));
    }
    if (emulation_ == escPos) {
      return slice + 4 * command() + wait(limit_, pollPause);
    }
    return slice;
  }

  double query() const { return command() + wait(limit_, pollPause); }

  double begin() const {
    const double clearPath =
        emulation_ == lineMode ? wait(std::max(limit_, hold_), retryPause) + status() : 0;
    return status() + clearPath + 3 * command();
  }

  double end() const {
    const double mark = 2 * command();
    // The port reads the report, the byte after the report, and the leftover bytes. Each of these
    // three reads takes at most one run of the run loop.
    return emulation_ == lineMode
               ? mark + wait(end_, endPause) + status()
               : mark + 2 * command() + wait(end_, pollPause) + status() + 3 * slice;
  }

  /// Unlike `wait`, adds no extra second, because this wait measures fractions of a second.
  static double response(double limit) { return limit + pollPause + slice; }

  double commandMode() const { return guardTimes + 2 * command() + response(moduleLimit); }

  const std::int32_t emulation_;
  const double limit_;
  const double end_;
  const double hold_;
  const double closePause_;
};

double Bounds::of(const Operation& operation) const {
  const std::string& name = operation.name;
  if (name == "isConnected") {
    return 0;
  }
  if (name == "close") {
    return closePause_;
  }
  if (name == "open" || name == "write" || name == "read") {
    return slice;
  }
  if (name == "writeWithRetry" || name == "startDataCancel") {
    return command();
  }
  if (name == "getParsedStatus") {
    return status();
  }
  if (name == "getOnlineStatus") {
    return command() + status();
  }
  if (name == "beginCheckedBlock") {
    return begin();
  }
  if (name == "endCheckedBlock") {
    return end();
  }
  if (name == "retrieveFirmwareInformation") {
    return status() + query();
  }
  if (name == "retrieveDipSwitchInformation") {
    return 2 * query();
  }
  if (name == "getPrinterResponse") {
    return response(std::max(operation.timeoutMillis / 1000, 1));
  }
  if (name == "enterATMode") {
    return commandMode();
  }
  if (name == "disconnect") {
    return commandMode() + query();
  }
  // The other operations send a question and wait for the answer, or ask the printer to drop the
  // link and wait until the link is lost.
  return query();
}

double stepsBack(const Scenario& scenario) {
  std::int64_t seconds = scenario.layerStepsBack;
  for (const auto& [reading, step] : scenario.script.clockSteps) {
    seconds += step < 0 ? -step : 0;
  }
  return static_cast<double>(seconds);
}

/// The number of bytes between the brackets of a trace's line.
std::int64_t bytesIn(const std::string& line) {
  const std::size_t begin = line.find('<') + 1;
  return static_cast<std::int64_t>((line.find('>', begin) - begin + 1) / 3);
}

constexpr const char* repeat = "the retrying writer's repeat";
constexpr const char* readyForNothing = "a stream that says ready";
constexpr const char* invalidStatus = "the invalid-status loop";
constexpr const char* drain = "the drain";

/// Follows the trace of a run line by line, and finds the parts of the run whose time the contract
/// does not limit.
class Watch {
 public:
  explicit Watch(bool endsBlockInEscPos) : endsBlockInEscPos_(endsBlockInEscPos) {}

  /// Returns the part's name if this line belongs to a part without a time limit; otherwise "".
  std::string see(const Line& line) {
    if (endsStretch(line)) {
      stretch_ = "";
    }
    if (const std::string begun = begunBy(line.text); !begun.empty()) {
      stretch_ = begun;
    }
    return stretch_;
  }

 private:
  bool endsStretch(const Line& line) const {
    const std::string& text = line.text;
    if (stretch_ == repeat) {
      return text.starts_with("input.") || text.starts_with("select ") ||
             (line.about == About::Wait && text != "usleep 50000" &&
              !text.starts_with("slice for output "));
    }
    if (stretch_ == readyForNothing) {
      return line.about == About::Wait;
    }
    return text.starts_with("input.read ") ||
           text == (stretch_ == invalidStatus ? "usleep 200000" : "ignoreSigPipe");
  }

  /// Returns the part's name if a part without a time limit begins with this line; otherwise "".
  std::string begunBy(const std::string& line) {
    if (line == "ignoreSigPipe") {
      const bool wasPartial = taken_ > 0 && taken_ != offered_;
      offered_ = taken_ = 0;
      return wasPartial ? repeat : "";
    }
    if (line.starts_with("output.write ")) {
      return seeWrite(line);
    }
    return line.starts_with("input.read ") ? seeRead(line) : "";
  }

  std::string seeWrite(const std::string& line) {
    const std::int64_t given = bytesIn(line);
    const std::int64_t count = std::stoll(line.substr(line.rfind("-> ") + 3));
    if (offered_ == 0) {
      offered_ = given;
    }
    taken_ += std::max<std::int64_t>(count, 0);
    followed_ = 0;
    return count == 0 || count < -1 || count > given ? readyForNothing : "";
  }

  std::string seeRead(const std::string& line) {
    if (line.find('<') == std::string::npos) {
      return line.ends_with("-> -1") ? "" : readyForNothing;
    }
    if (bytesIn(line) == 0) {
      return readyForNothing;
    }
    if (!endsBlockInEscPos_ || !line.starts_with("input.read 1 ")) {
      return "";
    }
    const unsigned long byte = std::stoul(line.substr(line.find('<') + 1, 2), nullptr, 16);
    if (++followed_ == 1) {
      beginsReport_ = byte == 0x1b;
    } else if (followed_ > 2 || !beginsReport_) {
      return drain;
    }
    const bool isExpected = (byte & 0x93U) == 0x12 || (followed_ == 1 && beginsReport_);
    return isExpected ? "" : invalidStatus;
  }

  const bool endsBlockInEscPos_;
  std::int64_t offered_ = 0;  // bytes offered by the writer's current attempt
  std::int64_t taken_ = 0;
  int followed_ = 0;           // how many bytes were read, one at a time, since the last write
  bool beginsReport_ = false;  // whether the first of these bytes begins a report
  std::string stretch_;
};

}  // namespace

double mostSeconds(const Scenario& scenario, const Call& call) {
  const Bounds bounds(scenario);
  double seconds = stepsBack(scenario);
  for (const Operation& operation : call.operations) {
    seconds += bounds.of(operation);
  }
  return seconds;
}

Exemption exemptionOf(const Outcome& outcome, const Call& call) {
  const bool endsBlock =
      std::any_of(call.operations.begin(), call.operations.end(),
                  [](const Operation& operation) { return operation.name == "endCheckedBlock"; });
  Watch watch(endsBlock);
  Exemption exemption;
  std::optional<double> exemptSince;
  for (const Line& line : outcome.lines) {
    if (line.about == About::Log) {
      continue;
    }
    exemption.seconds += exemptSince ? line.at - *exemptSince : 0;
    const std::string stretch = watch.see(line);
    exemptSince = stretch.empty() ? std::nullopt : std::optional(line.at);
    exemption.name = exemption.name.empty() ? stretch : exemption.name;
  }
  return exemption;
}

std::string overrun(const Scenario& scenario, const Call& call, const Outcome& outcome) {
  constexpr double rounding = 1e-3;
  const double most = mostSeconds(scenario, call);
  if (outcome.seconds <= most + rounding) {
    return "";
  }
  const double exempt = exemptionOf(outcome, call).seconds;
  if (outcome.seconds - exempt <= most + rounding) {
    return "";
  }
  std::ostringstream text;
  text << call.name << " took " << outcome.seconds << " s, " << exempt
       << " of them exempt, and may take " << most << " s\n";
  return text.str();
}

}  // namespace quordalvane::test
