#include "tools/quorport/Run.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>
#include <variant>

#include "iphone-IOPort/LogWriter.h"
#include "tools/quorport/CommandLine.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/LogOutput.h"
#include "tools/quorport/Signals.h"

namespace quordalvane::tool {
namespace {

ExitCode codeOf(int signal) {
  return signal == SIGHUP ? ExitCode::HungUp : ExitCode::Interrupted;
}

Report reportOf(const Order& order, const Surroundings& surroundings) {
  try {
    return order.command->run(order.options, surroundings);
  } catch (const Interrupted&) {
    return surroundings.interruption->report();
  } catch (const Failure& failure) {
    return failed(failure.code(), failure.what());
  } catch (const std::exception& error) {
    return failed(ExitCode::ExchangeFailed, printable(error.what()));
  }
}

// For the moment when nothing is open: what the command is doing need not be undone.
[[noreturn]] void leaveAtOnce(const Report& report, bool asJson, const Streams& streams) {
  LiveLine(streams.err).hide();
  deliver(report, asJson, streams);
  LogWriter::sharedInstance().flush();
  std::_Exit(static_cast<int>(report.code));
}

ExitCode carryOut(const Order& order, const Streams& streams) {
  const LogOutput log(order.options, streams);
  const bool asJson = order.options.json;
  const auto interruption = std::make_shared<Interruption>(
      [asJson, streams](const Report& report) { leaveAtOnce(report, asJson, streams); });
  const bool handlesSignals = order.command->kind == CommandKind::Service;
  Report report;
  {
    const auto watch =
        handlesSignals ? nullptr : std::make_unique<SignalWatch>([interruption](int signal) {
          interruption->interrupt(codeOf(signal));
        });
    report = reportOf(order, {streams, interruption});
    interruption->end();
  }
  // What is done is done, however late the wish to stop came. Of anything else the exit status
  // tells that wish, and the report what was found out.
  if (report.code != ExitCode::Done) {
    report.code = interruption->code().value_or(report.code);
  }
  const bool delivered = deliver(report, asJson, streams);
  // Who asked a question and got no answer must not take it for one. What was printed, on the other
  // hand, is printed, and a script that sends it again would print it twice.
  const bool isLost = !delivered && order.command->kind != CommandKind::Printing;
  return isLost && report.code == ExitCode::Done ? ExitCode::ExchangeFailed : report.code;
}

}  // namespace

int run(const std::vector<std::string>& arguments, const Streams& streams) {
  Report report;
  try {
    const auto parsed = parseCommandLine(arguments);
    if (const auto* order = std::get_if<Order>(&parsed)) {
      return static_cast<int>(carryOut(*order, streams));
    }
    report.text = std::get<std::string>(parsed);
    return deliver(report, false, streams) ? 0 : static_cast<int>(ExitCode::ExchangeFailed);
  } catch (const Failure& failure) {
    report = failed(failure.code(), failure.what());
  } catch (const std::exception& error) {
    report = failed(ExitCode::ExchangeFailed, printable(error.what()));
  }
  deliver(report, askForJson(arguments), streams);
  return static_cast<int>(report.code);
}

}  // namespace quordalvane::tool
