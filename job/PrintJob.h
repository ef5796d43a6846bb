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

/// The stages of a job, in order.
enum class PrintStage {
  Begin,  ///< before the data: the printer is asked and prepared
  Data,   ///< the data is sent
  End,    ///< after the data: waits for the proof that everything was printed
};

/// The progress of a job.
struct PrintProgress {
  PrintStage stage;             ///< the current stage
  std::uint64_t bytesAccepted;  ///< how many bytes of the job the link has taken
  std::uint64_t bytesTotal;     ///< the size of the job

  /// The reason why the printer has paused in the job, for example "cover open"; "" if it has not
  /// paused. The printer continues when the cause is removed.
  std::string waitsFor = {};
};

/// One print job over an open port. A job prepares the printer, sends the data, waits for the
/// printer's confirmation that the data was printed, and reports the outcome. A job sends the data
/// once, and never again by itself. An example:
///
///     const PrintResult result = PrintJob(port).run("1 Espresso   1.80\n");
///
/// If the link takes no data for as long as the port's time-out, the job fails. If the data itself
/// could cause the answers that confirm a job, the job is printed but not confirmed; see
/// `confirmationObstacle`.
class QUOR_EXPORT PrintJob {
 public:
  /// The options of a job.
  struct Options {
    /// The proof by which the printer confirms the job. If null, the job uses the `proof=` of the
    /// device. If the device has no `proof=`, the job uses Auto. With None the printer is asked
    /// nothing, and the best outcome is Unconfirmed. In line mode, every proof except Auto and
    /// Block has the effect of None.
    std::optional<ProofKind> proof = std::nullopt;

    /// Called when a stage begins, each time that the link has taken some data, and when the reason
    /// of the printer's pause changes. The calls are made on the thread of `run`.
    std::function<void(const PrintProgress&)> progress = {};
  };

  /// Creates a job for `port`, which must not be null. The job keeps the port alive. Nothing is
  /// sent before `run`.
  /// @{
  PrintJob(std::shared_ptr<ExternalAccessoryPort> port, Options options)
      : port_(std::move(port)), options_(std::move(options)) {}
  explicit PrintJob(std::shared_ptr<ExternalAccessoryPort> port) : PrintJob(std::move(port), {}) {}
  /// @}

  /// Prints `data` and returns the result. May be called once. Blocks until the printer is
  /// prepared, the data is sent and the proof has arrived. The sending fails if the link takes no
  /// data for as long as the port's time-out. The wait for the proof ends after the port's
  /// end-of-block time-out, even if the printer never stops sending. Until `run` returns, the job
  /// is the port's only observer; afterwards the port has no observer. The port remains open,
  /// unless the job was cancelled. Exceptions of the platform and of the progress function pass
  /// through.
  /// @{
  PrintResult run(ByteView data);
  PrintResult run(std::string_view text);
  /// @}

  /// Abandons the job. The job notices the cancel at its next read or write, after at most 0.3 s.
  /// Then it sends the printer a command to drop the rest of the data, and waits at most 0.5 s
  /// until the link has taken this command. In any case the job then closes the port. Any thread
  /// and any signal handler may call `cancel`, even before `run`.
  void cancel() noexcept { cancelled_ = true; }

 private:
  const std::shared_ptr<ExternalAccessoryPort> port_;
  const Options options_;
  std::atomic<bool> cancelled_ = false;
};

}  // namespace quordalvane
