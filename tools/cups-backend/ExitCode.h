#pragma once

#include <cups/backend.h>

namespace quordalvane::cups {

/// The exit codes of the back end's processes. The scheduler gets all of them except `CutOff`.
enum class ExitCode : int {
  Done = CUPS_BACKEND_OK,             ///< printed, or no longer wanted
  NextPrinter = CUPS_BACKEND_FAILED,  ///< nothing was sent; another printer may print the job
  Held = CUPS_BACKEND_HOLD,           ///< the job is held until a person releases it
  QueueStopped = CUPS_BACKEND_STOP,   ///< no job of this queue can be printed
  JobCanceled = CUPS_BACKEND_CANCEL,  ///< this job can never be printed
  CutOff = 100,                       ///< the worker was stopped; its parent chooses the code
};

}  // namespace quordalvane::cups
