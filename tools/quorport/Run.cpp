#include "tools/quorport/Run.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <variant>

#include "iphone-IOPort/LogWriter.h"
#include "logging/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/CommandLine.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/LogOutput.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/Signals.h"

namespace quordalvane::tool {
namespace {

struct Answer {
  Report report;
  bool asJson;
  CommandKind kind;
};

// What a command answers that did not begin.
Report refusal(CommandKind kind, ExitCode code, const std::string& error) {
  return kind == CommandKind::Printing ? refusedJob(code, error, 0) : failed(code, error);
}

// For the moment when nothing is open: nothing need be undone.
[[noreturn]] void leaveAtOnce(const Report& report, bool asJson, const Streams& streams) {
  LiveLine(streams.err).hide();
  deliver(report, asJson, streams);
  LogWriter::sharedInstance().flush();
  std::_Exit(static_cast<int>(report.code));
}

Report reportOf(const Order& order, const Surroundings& surroundings) {
  try {
    const LogOutput log(order.options, surroundings.streams);
    return order.command->run(order.options, surroundings);
  } catch (const Interrupted&) {
    return surroundings.interruption->report();
  } catch (const CommandFailure& failure) {
    return refusal(order.command->kind, failure.code(), failure.what());
  } catch (const std::exception& error) {
    return refusal(order.command->kind, ExitCode::ExchangeFailed, printable(error.what()));
  }
}

Report reportOf(const Order& order, const Streams& streams) {
  const bool asJson = order.options.json;
  const CommandKind kind = order.command->kind;
  const auto interruption = std::make_shared<Interruption>(
      refusal(kind, ExitCode::Interrupted, "interrupted"),
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
  // A task that is done stays done, however late the wish to stop arrived. Otherwise the exit
  // status shows that wish, and the report shows the result.
  if (report.code != ExitCode::Done) {
    report.code = interruption->code().value_or(report.code);
  }
  return report;
}

Answer answerTo(const std::vector<std::string>& arguments, const Streams& streams) {
  ExitCode code = ExitCode::Done;
  std::string error;
  try {
    const StopSignals held;  // a signal waits until the command can answer for what it interrupts
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
  return {refusal(kind, code, error), askForJson(arguments), kind};
}

}  // namespace

int run(const std::vector<std::string>& arguments, const Streams& streams) {
  const Answer answer = answerTo(arguments, streams);
  const bool delivered = deliver(answer.report, answer.asJson, streams);
  // Who asked a question and got no answer must not take it for one. What was printed, on the other
  // hand, is printed, and a script that sends it again would print it twice.
  const bool isLost = !delivered && answer.kind != CommandKind::Printing;
  const bool isDone = answer.report.code == ExitCode::Done;
  return static_cast<int>(isLost && isDone ? ExitCode::ExchangeFailed : answer.report.code);
}

}  // namespace quordalvane::tool
