#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <quordalvane/QuorExport.h>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/ByteView.h"
#include "job/PrintResult.h"

namespace quordalvane {

/// The stages of a job, in their order.
enum class PrintStage {
  Begin,  ///< the block begins: the printer is asked and made ready
  Data,   ///< the data is sent
  End,    ///< the block ends: the printer is asked until it has printed all
};

/// The progress of a job.
struct PrintProgress {
  PrintStage stage;             ///< the current one
  std::uint64_t bytesAccepted;  ///< how many bytes of the job the link has taken
  std::uint64_t bytesTotal;     ///< the size of the job

  /// Why a printer that keeps the job has paused, "cover open" for example; "" while it prints.
  std::string waitsFor = {};
};

/// One print job over an open port: begins a proof, moves the data, ends the proof, and reports
/// the outcome honestly. A job is sent once and never again by itself:
///
///     const PrintResult result = PrintJob(port).run("1 Espresso   1.80\n");
///
/// The data is sent by `write:` in pieces, under the port's time-out: if there is no progress for
/// so long, the job fails. A job whose data could itself make the printer's signs is printed, but
/// not confirmed, see `confirmationObstacle`.
class QUOR_EXPORT PrintJob {
 public:
  /// How a job is run.
  struct Options {
    /// How the printer is to confirm the job; if empty, as `proof=` of its device says, and
    /// otherwise Auto. With None the printer is asked nothing, and the best outcome is Unconfirmed.
    /// In line mode ProcessId and InOrder prove nothing either.
    std::optional<ProofKind> proof = std::nullopt;

    /// Called on the thread of `run` when a stage begins, after each piece that was sent, and when
    /// the reason changes for which the printer has paused.
    std::function<void(const PrintProgress&)> progress = {};
  };

  /// A job for `port`, never null, which it keeps alive. Nothing is asked or sent before `run`.
  /// @{
  PrintJob(std::shared_ptr<ExternalAccessoryPort> port, Options options)
      : port_(std::move(port)), options_(std::move(options)) {}
  explicit PrintJob(std::shared_ptr<ExternalAccessoryPort> port) : PrintJob(std::move(port), {}) {}
  /// @}

  /// Prints `data` and returns the result; called once. Blocks for the block's beginning, for the
  /// data, up to the time-out without progress, and up to the port's end-of-block time-out, however
  /// much the printer sends meanwhile. The job is the port's only observer until it returns, and
  /// removes itself then. The port remains open, except after a cancel. Exceptions of the platform
  /// and the progress function pass through.
  /// @{
  PrintResult run(ByteView data);
  PrintResult run(std::string_view text);
  /// @}

  /// Abandons the job: as soon as the port looks at the link again, 0.3 s at most, the printer is
  /// made to drop the data that it holds, if the link takes that within 0.5 s, and the port is
  /// closed. Any thread, also before `run`; safe in a signal handler.
  void cancel() noexcept { cancelled_ = true; }

 private:
  const std::shared_ptr<ExternalAccessoryPort> port_;
  const Options options_;
  std::atomic<bool> cancelled_ = false;
};

}  // namespace quordalvane
