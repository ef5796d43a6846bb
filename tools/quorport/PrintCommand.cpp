#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "job/Advice.h"
#include "job/PrintJob.h"
#include "job/Words.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/NamedPrinting.h"
#include "tools/quorport/PrintInput.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/PrinterTurn.h"
#include "tools/quorport/Receipt.h"
#include "tools/quorport/Rendering.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/StatusFields.h"

namespace quordalvane::tool {
namespace {

ExitCode codeOfRefusal(PrintObstacle obstacle) {
  switch (obstacle) {
    case PrintObstacle::PrinterNotReady:
      return ExitCode::NotReady;
    case PrintObstacle::LinkLost:
      return ExitCode::LinkLost;
    case PrintObstacle::None:
    case PrintObstacle::Cancelled:
    case PrintObstacle::ExchangeFailed:
    case PrintObstacle::NoProof:
      break;
  }
  return ExitCode::ExchangeFailed;
}

ExitCode codeOf(const PrintResult& result) {
  if (result.obstacle == PrintObstacle::Cancelled) {
    return ExitCode::Interrupted;
  }
  switch (result.outcome) {
    case PrintOutcome::Printed:
      return ExitCode::Done;
    case PrintOutcome::Unconfirmed:
      return ExitCode::Unconfirmed;
    case PrintOutcome::Refused:
      break;
  }
  return codeOfRefusal(result.obstacle);
}

// Returns a hint for the user: how to print without asking the printer how it confirms jobs.
// Returns "" if this job did not ask the printer, or ended before the printer could answer. If the
// printer did not answer in time, the hint says that it applies only if no job gets an answer: this
// one answer may have been late.
std::string hintOf(const PrintResult& result) {
  if (!result.hasAskedForProof || result.proof == ProofKind::Auto) {
    return "";
  }
  const std::string condition =
      result.proof == ProofKind::None ? "if every job ends without an answer, " : "";
  return "\n  hint: " + condition + "add ,proof=" + std::string(nameOf(result.proof)) +
         " to the device, so that no job asks the printer how it confirms jobs";
}

Report reportOn(const PrintResult& result) {
  Report report;
  report.json = JsonObject(Json{{"ok", result.outcome == PrintOutcome::Printed},
                                {"device", nullptr},
                                {"outcome", nameOf(result.outcome)},
                                {"proof", nameOf(result.proof)},
                                {"resultCode", result.resultCode},
                                {"bytesTotal", result.bytesTotal},
                                {"bytesAccepted", result.bytesAccepted},
                                {"status", result.status ? jsonOf(*result.status) : Json(nullptr)},
                                {"error", nullptr}});
  if (result.outcome == PrintOutcome::Printed) {
    report.text = "printed: the printer confirmed all " + grouped(result.bytesTotal) + " bytes" +
                  hintOf(result) + "\n";
  } else {
    setFailed(report, codeOf(result), printable(result.reason));
    report.error = std::string(nameOf(result.outcome)) + ": " + printable(result.reason) +
                   "\n  next: " + printable(result.advice) + hintOf(result);
  }
  return report;
}

void setTimeouts(ExternalAccessoryPort& port, const PrintOptions& options) {
  if (options.endTimeout) {
    port.setEndCheckedBlockTimeoutMillis(*options.endTimeout);
  }
  if (options.holdPrintTimeout) {
    port.setHoldPrintTimeoutMillis(*options.holdPrintTimeout);
  }
}

std::string inWords(const PrintProgress& progress) {
  if (progress.stage == PrintStage::Begin) {
    return "checking the printer before the job";
  }
  if (progress.stage == PrintStage::End) {
    return "sent all " + grouped(progress.bytesTotal) + " bytes, waiting until they are printed";
  }
  const std::uint64_t percent =
      progress.bytesTotal == 0 ? 100 : progress.bytesAccepted * 100 / progress.bytesTotal;
  return "sent " + grouped(progress.bytesAccepted) + " of " + grouped(progress.bytesTotal) +
         " bytes (" + std::to_string(percent) + " %)";
}

// Prints the job. `named` is null if the job has no name.
PrintResult runJob(const std::vector<std::uint8_t>& data, Printer& printer, LiveLine& line,
                   const PrintOptions& options, NamedPrinting* named,
                   const Surroundings& surroundings) {
  setTimeouts(*printer.port(), options);
  std::uint64_t bytesAccepted = 0;
  PrintJob::Options plain;
  plain.proof = options.proof;
  plain.progress = [&](const PrintProgress& progress) {
    bytesAccepted = progress.bytesAccepted;
    line.show(progress.waitsFor.empty() ? inWords(progress)
                                        : printable(progress.waitsFor) + ": waiting");
  };
  PrintJob job(printer.port(), named == nullptr ? plain : named->recorded(plain));
  surroundings.interruption->beginJob(job);
  PrintResult result;
  try {
    result = named == nullptr ? job.run(data) : named->run(job);
  } catch (const CommandFailure&) {
    throw;
  } catch (const std::exception& error) {
    // The piece that was being sent may have arrived in part, so the count of sent bytes is
    // unknown.
    result.outcome = PrintOutcome::Unconfirmed;
    result.obstacle = PrintObstacle::ExchangeFailed;
    result.bytesTotal = data.size();
    result.bytesAccepted = bytesAccepted;
    result.reason = error.what();
    result.advice = adviceFor(result);
  }
  if (result.outcome != PrintOutcome::Printed && !result.status) {
    result.reason += printer.portReport();
  }
  surroundings.interruption->end();
  line.show("closing the port");
  return result;
}

std::optional<Receipt> receiptFor(const Options& options, const InterruptiblePlatform& platform) {
  const auto chosen = options.print.receipt ? chosenAccessory(platform, options) : nullptr;
  return chosen ? std::optional<Receipt>(std::in_place, *options.print.receipt, chosen)
                : std::nullopt;
}

// Adds the error `why` to the report of a printed job whose receipt file is missing. The job still
// counts as printed, but the exit status becomes ExitCode::ExchangeFailed. Changes no other report.
void noteMissingReceipt(Report& report, const std::string& why) {
  if (report.code == ExitCode::Done) {
    report.code = ExitCode::ExchangeFailed;
    report.json["ok"] = false;
    report.json["error"] = why;
  }
}

// Returns the device text of the printer that the port will choose.
std::string chosenDevice(const Options& options, const InterruptiblePlatform& platform) {
  const auto devices = devicesOf(options);
  if (devices.size() == 1) {
    return devices.front();
  }
  const auto& accessories = platform.accessories();
  const auto chosen =
      std::find(accessories.begin(), accessories.end(), chosenAccessory(platform, options));
  if (chosen == accessories.end()) {
    throw noneMatches(platform, options);
  }
  return devices[static_cast<std::size_t>(chosen - accessories.begin())];
}

// Waits until no other job uses the printer, prints the job, and returns its outcome.
PrintResult sendData(const std::vector<std::uint8_t>& data,
                     const std::shared_ptr<InterruptiblePlatform>& platform,
                     const std::string& device, NamedPrinting* named, const Options& options,
                     const Surroundings& surroundings) {
  const auto turn = takePrinter(device, options, surroundings);
  LiveLine line(surroundings.streams.err);
  Printer printer(platform, options, surroundings);
  return runJob(data, printer, line, options.print, named, surroundings);
}

// Like `sendData`, for a job with a name.
Report printNamed(const std::vector<std::uint8_t>& data,
                  const std::shared_ptr<InterruptiblePlatform>& platform, const std::string& device,
                  const Options& options, const Surroundings& surroundings) {
  NamedPrinting named(options, device, data, surroundings);
  Report report;
  try {
    report = reportOn(named.answer() != nullptr
                          ? *named.answer()
                          : sendData(data, platform, device, &named, options, surroundings));
  } catch (const CommandFailure& failure) {
    if (failure.code() != ExitCode::NoJournal) {
      named.refuse(failure.what());
    }
    report = refusedJob(failure.code(), failure.what(), data.size(), options.print.job);
  }
  named.addTo(report);
  return report;
}

Report printData(const std::vector<std::uint8_t>& data, const Options& options,
                 const Surroundings& surroundings) {
  const auto platform = presentDevices(options, surroundings);
  auto receipt = receiptFor(options, *platform);
  const std::string device = chosenDevice(options, *platform);
  Report report = options.print.job
                      ? printNamed(data, platform, device, options, surroundings)
                      : reportOn(sendData(data, platform, device, nullptr, options, surroundings));
  if (const std::string why = receipt ? receipt->write() : ""; !why.empty()) {
    complain(why, surroundings.streams);
    noteMissingReceipt(report, why);
  }
  return report;
}

// Requires a device, because a job without one would be "printed" on the virtual printer and lost.
void requireDevice(const Options& options) {
  if (options.devices.empty()) {
    throw CommandFailure(
        ExitCode::Usage,
        "no printer is named, and nothing was sent: name one, such as --device "
        "tcp:HOST:PORT, or set the variable QUORPORT_DEVICE; to print on the virtual "
        "printer, use --device virtual:");
  }
}

}  // namespace

Report refusedJob(ExitCode code, const std::string& error, std::uint64_t bytesTotal,
                  const std::optional<std::string>& job) {
  PrintResult result;
  result.bytesTotal = bytesTotal;
  result.reason = error;
  Report report = reportOn(result);
  report.code = code;
  report.error = error;
  if (job) {
    report.json["job"] = *job;
    report.json["attempt"] = 0;
    report.json["repeated"] = false;
  }
  return report;
}

Report print(const Options& options, const Surroundings& surroundings) {
  requireDevice(options);
  const bool hasFile = options.print.render.content != RenderOptions::Content::TestPage;
  const auto contents =
      hasFile ? readJob(options.print.file, surroundings.streams) : std::vector<std::uint8_t>();
  const auto data = rendered(contents, options.print.render, surroundings.streams);
  surroundings.interruption->setReport(
      refusedJob(ExitCode::Interrupted, "interrupted", data.size(), options.print.job));
  try {
    return printData(data, options, surroundings);
  } catch (const CommandFailure& failure) {
    return refusedJob(failure.code(), failure.what(), data.size(), options.print.job);
  }
}

}  // namespace quordalvane::tool
