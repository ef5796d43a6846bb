#include "tools/cups-backend/BackEnd.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <system_error>

#include "tools/cups-backend/Aftermath.h"
#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/Guard.h"
#include "tools/cups-backend/Listing.h"
#include "tools/cups-backend/Release.h"
#include "tools/cups-backend/StatusLines.h"
#include "tools/cups-backend/Witness.h"
#include "tools/cups-backend/Worker.h"

namespace quordalvane::cups {
namespace {

std::string variable(const char* name) {
  const char* const text = std::getenv(name);
  return text == nullptr ? "" : text;
}

// A stopped queue keeps its jobs and shows the reason to its users.
void stopQueue() {
  StatusLines lines("");
  lines.setReasons(unconfirmedJob);
  lines.complain("unconfirmed: the back end was ended during the job");
  lines.stopQueue();
}

ExitCode printJob(const Witness& witness, const std::vector<std::string>& arguments,
                  StatusLines& lines) {
  const BackEndJob job = parseBackEndJob(arguments, variable);
  const DeviceUri uri = parseDeviceUri(job.uri);
  const auto scheduler = schedulerStart(::getppid());
  return guarded([&] { return work(job, uri, scheduler, [&] { witness.dismiss(); }); },
                 [&](const BrokenOff& end) { return judgeBrokenOff(job, uri, end, lines); });
}

ExitCode printJob(const std::vector<std::string>& arguments, StatusLines& lines) {
  // The witness process is started first, because only the witness notices if this process is
  // killed.
  const Witness witness(stopQueue);
  ExitCode code = ExitCode::Held;
  try {
    code = printJob(witness, arguments, lines);
  } catch (const std::invalid_argument& error) {
    lines.complain(error.what());
    code = ExitCode::QueueStopped;
  } catch (const std::exception& error) {
    lines.complain(error.what());
  }
  witness.dismiss();
  return code;
}

}  // namespace

int run(const std::vector<std::string>& arguments) {
  StatusLines lines(variable("PRINTER_STATE_REASONS"));
  if (arguments.size() == 1) {
    listPrinters(STDOUT_FILENO, lines);
    return static_cast<int>(ExitCode::Done);
  }
  try {
    return static_cast<int>(printJob(arguments, lines));
  } catch (const std::system_error& error) {
    lines.complain(error.what());
    return static_cast<int>(ExitCode::Held);
  }
}

}  // namespace quordalvane::cups
