#include "tools/quorport/Run.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

#include "backends/Devices.h"
#include "iphone-IOPort/LogWriter.h"
#include "text/Quoted.h"
#include "tools/process/Signals.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/CommandLine.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/LogOutput.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

struct Answer {
  Report report;
  bool asJson;
  CommandKind kind;
};

// Returns the report of a command that did not begin. `job` is the name of the job; empty if the
// job has no name.
Report refusal(CommandKind kind, ExitCode code, const std::string& error,
               const std::optional<std::string>& job) {
  return kind == CommandKind::Printing ? refusedJob(code, error, 0, job) : failed(code, error);
}

// Ends the process immediately. To be called only while nothing is open that needs to be closed.
[[noreturn]] void leaveAtOnce(const Report& report, bool asJson, const Streams& streams) {
  LiveLine(streams.err).hide();
  deliver(report, asJson, streams);
  LogWriter::sharedInstance().flush();
  std::_Exit(static_cast<int>(report.code));
}

// Replaces each text that stands for several devices by those devices.
Options meant(Options options) {
  std::vector<std::string> devices;
  for (const std::string& text : options.devices) {
    std::ranges::move(devicesMeantBy(text), std::back_inserter(devices));
  }
  options.devices = std::move(devices);
  return options;
}

Report reportOf(const Order& order, const Surroundings& surroundings) {
  const auto& job = order.options.print.job;
  try {
    const LogOutput log(order.options, surroundings.streams);
    return order.command->run(meant(order.options), surroundings);
  } catch (const Interrupted&) {
    return surroundings.interruption->report();
  } catch (const CommandFailure& failure) {
    return refusal(order.command->kind, failure.code(), failure.what(), job);
  } catch (const std::exception& error) {
    return refusal(order.command->kind, ExitCode::ExchangeFailed, printable(error.what()), job);
  }
}

Report reportOf(const Order& order, const Streams& streams) {
  const bool asJson = order.options.json;
  const CommandKind kind = order.command->kind;
  const auto interruption = std::make_shared<Interruption>(
      refusal(kind, ExitCode::Interrupted, "interrupted", order.options.print.job),
      [asJson, streams](const Report& report) { leaveAtOnce(report, asJson, streams); });
  Report report;
  {
    const auto watch = kind == CommandKind::Service
                           ? nullptr
                           : std::make_unique<SignalWatch>([interruption](int signal) {
                               interruption->interrupt(codeOfSignal(signal));
                             });
    report = reportOf(order, {streams, interruption});
    interruption->end();
  }
  nameDevice(report, interruption->device());
  // A command that has completed its task keeps its exit status 0, even after a stop request. Any
  // other command gets the exit status of the stop request, if there was one. The rest of the
  // report is unchanged.
  if (report.code != ExitCode::Done) {
    report.code = interruption->code().value_or(report.code);
  }
  return report;
}

Answer answerTo(const std::vector<std::string>& arguments, const Streams& streams) {
  ExitCode code = ExitCode::Done;
  std::string error;
  try {
    const StopSignals held;  // delays signals until they can be reported as an interruption
    const auto parsed = parseCommandLine(arguments);
    if (const auto* order = std::get_if<Order>(&parsed)) {
      return {reportOf(*order, streams), order->options.json, order->command->kind};
    }
    Report report;
    report.text = std::get<std::string>(parsed);
    return {report, false, CommandKind::Question};
  } catch (const CommandFailure& failure) {
    code = failure.code();
    error = failure.what();
  } catch (const std::exception& problem) {
    code = ExitCode::ExchangeFailed;
    error = printable(problem.what());
  }
  const Command* const command = commandNamedIn(arguments);
  const CommandKind kind = command == nullptr ? CommandKind::Question : command->kind;
  return {refusal(kind, code, error, jobNamedIn(arguments)), askForJson(arguments), kind};
}

// Returns the exit status of a command that succeeded, but whose result could not be written. A
// query counts as failed. A print job counts as unconfirmed: the user has not seen that the job was
// printed, and must check the paper before printing it again. But if standard output was closed
// from the start, nobody wanted the result, and the print job counts as printed.
ExitCode codeOfLostResult(CommandKind kind, const std::error_code& error) {
  if (kind != CommandKind::Printing) {
    return ExitCode::ExchangeFailed;
  }
  const bool isClosed = error == std::errc::bad_file_descriptor;
  return isClosed ? ExitCode::Done : ExitCode::Unconfirmed;
}

}  // namespace

int run(const std::vector<std::string>& arguments, const Streams& streams) {
  const Answer answer = answerTo(arguments, streams);
  const std::error_code error = deliver(answer.report, answer.asJson, streams);
  const bool isLost = error && answer.report.code == ExitCode::Done;
  return static_cast<int>(isLost ? codeOfLostResult(answer.kind, error) : answer.report.code);
}

}  // namespace quordalvane::tool
