#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>

#include "backends/posix/AccessoryNotices.h"
#include "job/Words.h"
#include "logging/DescriptorOutput.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Joined.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/StatusFields.h"
#include "tools/quorport/TimeText.h"

namespace quordalvane::tool {
namespace {

using SystemTime = std::chrono::system_clock::time_point;

// A look is one status query of `monitor`; this is its result.
struct Look {
  std::string state;  // the state's name, for programs
  std::string text;   // the state in words, for people
  Json status;        // the fields of the status; null if there is none
  ExitCode code;

  // Returns the fields without the raw reply, which only repeats the values of the other fields.
  Json fields() const {
    Json result = status;
    if (result.is_object()) {
      result.erase("raw");
      result.erase("rawLength");
    }
    return result;
  }
};

// Returns the names of the fields that have changed since the previous status query. If that query
// gave no status, returns all names. If the present query gives no status, returns an empty list.
Json changedFields(const Json& before, const Json& now) {
  Json names = Json::array();
  for (const auto& [name, value] : now.items()) {
    if (!before.is_object() || before.at(name) != value) {
      names.push_back(name);
    }
  }
  return names;
}

class Monitor {
 public:
  Monitor(const Options& options, const Surroundings& surroundings)
      : options_(options),
        surroundings_(surroundings),
        platform_(presentDevices(options, surroundings)),
        line_(surroundings.streams.err) {
    if (chosenAccessory(*platform_, options_) == nullptr) {
      throw noneMatches(*platform_, options_);
    }
  }

  Report run() {
    const std::uint32_t count = options_.monitor.count;
    while (true) {
      const Look now = look();
      note(now);
      if (count != 0 && looks_ == count) {
        Report report;
        report.code = now.code;
        return report;
      }
      pause();
    }
  }

 private:
  // Waits until the next look is due, or a printer is plugged in or unplugged.
  void pause() {
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + milliseconds(options_.monitor.interval);
    auto now = steady_clock::now();
    do {
      const auto left =
          ceil<microseconds>(std::max(deadline - now, steady_clock::duration::zero()));
      surroundings_.interruption->sleep(left, notices_.descriptor());
      now = steady_clock::now();
    } while (!notices_.await({}) && now < deadline);
  }

  // Closes a port whose link is lost, so that the next look opens a new port.
  Look look() {
    try {
      if (!printer_) {
        printer_.emplace(platform_, options_, surroundings_);
      }
      const QuorPrinterStatus_2 status =
          printer_->ask([](PrinterInquiry& inquiry) { return inquiry.status(); });
      return {status.offline != 0 ? "not-ready" : "ready", joined(remarks(status), "; "),
              jsonOf(status), ExitCode::Done};
    } catch (const CommandFailure& failure) {
      return lookOf(failure);
    }
  }

  Look lookOf(const CommandFailure& failure) {
    if (failure.code() == ExitCode::ExchangeFailed) {
      return {"no-answer", failure.what(), nullptr, failure.code()};
    }
    printer_.reset();
    surroundings_.interruption->begin();
    const bool isLost = failure.code() == ExitCode::LinkLost;
    return {isLost ? "link-lost" : "unreachable",
            failure.what() + std::string("; quorport tries again"), nullptr, failure.code()};
  }

  void note(const Look& now) {
    ++looks_;
    const SystemTime time = std::chrono::system_clock::now();
    const bool isSame = last_ && last_->state == now.state && last_->text == now.text;
    if (!isSame || (options_.json && last_->fields() != now.fields())) {
      line_.hide();
      tell(now, time);
      lastChange_ = time;
    }
    last_ = now;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time - lastChange_).count();
    line_.show(localText(time) + "  unchanged for " + std::to_string(seconds) + " s, " +
               grouped(looks_) + (looks_ == 1 ? " look" : " looks"));
  }

  void tell(const Look& now, SystemTime time) {
    const auto device = surroundings_.interruption->device();
    Json object = {{"time", utcText(time)},
                   {"ok", now.code == ExitCode::Done},
                   {"device", device ? Json(*device) : Json(nullptr)},
                   {"state", now.state},
                   {"text", now.text},
                   {"status", now.status},
                   {"changed", changedFields(last_ ? last_->fields() : Json(), now.fields())}};
    if (now.code != ExitCode::Done) {
      object["error"] = now.text;
    }
    const std::string told =
        options_.json ? inOneLine(object) : localText(time) + "  " + labelOf(device) + now.text;
    if (const WriteOutcome outcome = writeAll(surroundings_.streams.out, told + "\n");
        outcome.error) {
      throw CommandFailure(ExitCode::ExchangeFailed,
                           "standard output cannot be written: " + outcome.error.message());
    }
  }

  const Options& options_;
  const Surroundings& surroundings_;
  posix::AccessoryNotices notices_;
  const std::shared_ptr<InterruptiblePlatform> platform_;
  LiveLine line_;
  std::optional<Printer> printer_;
  std::optional<Look> last_;
  SystemTime lastChange_;
  std::uint64_t looks_ = 0;
};

}  // namespace

Report monitor(const Options& options, const Surroundings& surroundings) {
  return Monitor(options, surroundings).run();
}

}  // namespace quordalvane::tool
