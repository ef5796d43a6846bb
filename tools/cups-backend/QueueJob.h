#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "journal/NamedJob.h"
#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"
#include "tools/cups-backend/ExitCode.h"
#include "tools/cups-backend/JobBlocks.h"
#include "tools/cups-backend/PrinterState.h"
#include "tools/cups-backend/QueuePrinter.h"
#include "tools/cups-backend/StatusLines.h"
#include "tools/cups-backend/StopWish.h"

namespace quordalvane::cups {

/// Prints one job of a queue, and returns its outcome as an exit code.
///
/// As long as nothing of a block was sent, the job waits for the printer and tries again. After the
/// first byte of a block was sent, the block is either confirmed or left to a person. It is never
/// sent again automatically.
class QueueJob {
 public:
  /// The objects that a job uses; all must outlive it.
  struct Surroundings {
    StatusLines& lines;
    StopWish& wish;
    PrinterState& state;
    std::optional<std::int64_t> schedulerStart;  ///< milliseconds since 1970
  };

  /// Throws `std::invalid_argument`, with a text for people, if the device in `uri` is not valid.
  QueueJob(const BackEndJob& job, const DeviceUri& uri, const Surroundings& surroundings);

  /// Prints `copy` as often as the job demands. Calls `onConfirmed` when the printer has confirmed
  /// all copies. Returns only after the job has an outcome.
  ExitCode print(const std::vector<std::uint8_t>& copy, const std::function<void()>& onConfirmed);

  const QueuePrinter& printer() const { return printer_; }

 private:
  // The decision about a block; empty if nothing was sent and the block is to be tried again.
  using Verdict = std::optional<ExitCode>;

  ExitCode printBlock(const JobBlock& block, const std::vector<std::uint8_t>& data);
  Verdict tryBlock(const JobBlock& block, const std::vector<std::uint8_t>& data);
  Verdict answered(NamedJob& named, const JobBlock& block);
  Verdict run(NamedJob& named, const JobBlock& block);
  Verdict judge(NamedJob& named, const NamedJobResult& result, const JobBlock& block);
  bool isWantedAgain(const NamedJobResult& known) const;
  ExitCode hold(NamedJob& named, const PrintResult& result);
  ExitCode confirm(const JobBlock& block, const PrintResult& result);
  Verdict postpone(const std::string& why, const StateReasons& reasons);
  void awaitReady(const PrintResult& refused);
  PrintJob::Options options();
  void forgetOldJobs() const;

  const BackEndJob& job_;
  const DeviceUri& uri_;
  const Surroundings with_;
  QueuePrinter printer_;
};

}  // namespace quordalvane::cups
