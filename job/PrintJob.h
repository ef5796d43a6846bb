#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/BlockReport.h"
#include "job/OwedAnswers.h"

namespace quordalvane {

/// What became of a job.
enum class PrintOutcome {
  Printed,      ///< the printer confirmed that it has printed all of it
  Unconfirmed,  ///< bytes went out, and nothing proves that they were printed, or that they were
                ///< not
  Refused,      ///< no byte of the job went out: to send it again is safe
};

/// Why a job was not printed, as far as a program must tell the cases apart.
enum class PrintObstacle {
  None,             ///< printed, or not run to its end
  PrinterNotReady,  ///< the printer answered and is off line, or paper is in its exit
  LinkLost,         ///< the link ended before the job did
  Cancelled,        ///< `PrintJob::cancel` was called
  ExchangeFailed,   ///< no answer, no space for too long, or a failed write
  NoProof,  ///< all went out, and the sign that it was printed is missing or could be another's
};

/// What came of a job, for the program and for the person before it.
struct PrintResult {
  PrintOutcome outcome = PrintOutcome::Refused;  ///< what became of it
  PrintObstacle obstacle = PrintObstacle::None;  ///< why it was not printed; none when it was

  /// The result code of the block's beginning; failed without a block.
  std::int64_t resultCode = ZKQuorIOResultCodeFailedError;

  std::uint64_t bytesTotal = 0;     ///< what the job has
  std::uint64_t bytesAccepted = 0;  ///< what the link took of the job, exactly

  /// The last status that was obtained; none if none was. Of a job whose data has begun to go out
  /// only one from after the data: what the printer was before says nothing of what became of it.
  std::optional<QuorPrinterStatus_2> status;

  /// Why, for a person: "cover open", "link lost after 1,204 of 3,800 bytes". "" when printed.
  std::string reason;

  /// What the caller may do next, for a person. "" when printed.
  std::string advice;
};

/// What a job is at. One without a block has its data alone.
enum class PrintStage {
  Begin,  ///< the block begins: the printer is asked and made ready
  Data,   ///< the data goes out
  End,    ///< the block ends: the printer is asked until it has printed all
};

/// How far a job has come.
struct PrintProgress {
  PrintStage stage;             ///< what it is at
  std::uint64_t bytesAccepted;  ///< what the link has taken of it
  std::uint64_t bytesTotal;     ///< what it has
};

/// One print job over an open port: begins a checked block, moves the data, ends the block, and
/// tells honestly what came of it. A job is sent once and never again by itself.
///
/// The data goes out by `write:` in pieces, under the port's time-out: as long without progress
/// fails the job. A job whose data could itself make the printer's signs is printed, but not
/// confirmed, see `confirmationObstacle`.
class QUOR_EXPORT PrintJob : private TransferObserver {
 public:
  /// How a job is run.
  struct Options {
    /// False: no block, hence no look at the printer and no proof. The best outcome is Unconfirmed.
    bool checked = true;

    /// Called on the thread of `run` when a stage begins, and after each piece that went out.
    std::function<void(const PrintProgress&)> progress = {};
  };

  /// A job for `port`, never null, which it keeps alive; a checked one unless `options` say
  /// otherwise. Nothing is asked or sent before `run`.
  /// @{
  PrintJob(std::shared_ptr<ExternalAccessoryPort> port, Options options);
  explicit PrintJob(std::shared_ptr<ExternalAccessoryPort> port) : PrintJob(std::move(port), {}) {}
  /// @}

  ~PrintJob() override = default;

  /// Prints `data` and returns what became of it; called once. Blocks for the block's beginning,
  /// for the data, up to the time-out without progress, and up to the port's end-of-block time-out.
  /// The port stays open, except after a cancel. Exceptions of the platform and the progress
  /// function pass through.
  PrintResult run(std::span<const std::uint8_t> data);

  /// Abandons the job: as soon as the port looks at the link again, 0.3 s at most, the printer is
  /// told to drop what it holds, if the link takes that within 0.5 s, and the port is closed. Any
  /// thread, also before `run`; safe in a signal handler.
  void cancel() noexcept { cancelled_ = true; }

 private:
  /// Between looks at a link that has nothing and says so at once.
  static constexpr std::uint64_t lookPauseMicroseconds = 10000;

  struct Cancelled {};
  struct Reported {};

  void bytesWritten(std::span<const std::uint8_t> bytes) override;
  void bytesRead(std::span<const std::uint8_t> bytes) override;
  void stopIfCancelled() const;
  void stopIfReported();

  void print(std::span<const std::uint8_t> data);
  bool begin();
  bool synchronise();
  bool awaitAnswers();
  bool isReadyInLineMode();
  bool isReadyInESCPOS();
  void leaveBlock();
  bool move(std::span<const std::uint8_t> data, std::uint64_t& accepted);
  void end(std::span<const std::uint8_t> data);
  std::string endBlock();
  std::string whyNotEnded(std::chrono::nanoseconds waited) const;
  std::string whyUnproven() const;
  bool endOnPort();
  void enter(PrintStage stage);
  void reportProgress() const;
  bool isProven() const;
  void drainInput();
  bool isLinkLost();
  void finishCancelled(std::span<const std::uint8_t> data);

  bool stop(PrintObstacle obstacle, const std::string& reason);
  bool stopForLostExchange(const std::string& otherwise);
  std::string progressInWords() const;

  const std::shared_ptr<ExternalAccessoryPort> port_;
  const Options options_;
  std::atomic<bool> cancelled_ = false;
  std::uint64_t* accepted_ = nullptr;  // what counts the bytes that go out now; null: nothing
  std::chrono::nanoseconds deadline_ = std::chrono::nanoseconds::max();
  PrintStage stage_ = PrintStage::Begin;
  bool isFinishing_ = false;  // a cancelled job sends its last words
  OwedAnswers answers_;
  BlockReport report_;
  bool awaitsReport_ = false;
  std::optional<std::chrono::nanoseconds> reportedAt_;  // when the report was first seen
  QuorPrinterStatus_2 status_ = {};
  PrintResult result_;
};

}  // namespace quordalvane
