#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <quordalvane/QuorExport.h>

#include "job/ByteView.h"
#include "job/PrintJob.h"
#include "journal/Journal.h"
#include "locks/ByteLock.h"

namespace quordalvane {

/// The name of a job, and how to run it.
struct NamedJobRequest {
  std::string name;    ///< 1 to 255 bytes of UTF-8 without control characters
  std::string device;  ///< the device text, recorded only for people who read the journal

  /// True: print the job again although nobody knows whether it is on paper. Set this only after a
  /// person has looked at the paper.
  bool again = false;

  /// True: only the name identifies the job. The data may differ from call to call, for example
  /// because it contains the time.
  bool isNameEnough = false;

  /// How long to wait for another process that is printing the job. Zero means not to wait.
  std::chrono::milliseconds timeout = std::chrono::seconds(10);

  /// The constructor of `NamedJob` calls this function once, on the caller's thread, if the
  /// constructor has to wait for another process that is printing the job. May be empty.
  std::function<void()> onWait = {};
};

/// The result of a named job.
struct NamedJobResult {
  PrintResult result;        ///< the result of the attempt that decides the job's state
  std::int64_t attempt = 0;  ///< the number of that attempt, from 1; 0 if there was no attempt
  bool isRepeated = false;   ///< true if an earlier call printed the job; this call sent nothing

  /// Two times of an earlier attempt, in milliseconds since 1970, UTC: `begun` is the time at which
  /// that attempt began, and `told` the time at which a person was told that its outcome is unknown
  /// (null if nobody was told; see `NamedJob::tell`). Both are set only if this call sent nothing
  /// and `result` is that of an earlier attempt in the journal; otherwise they are 0 and null.
  /// @{
  std::int64_t begun = 0;
  std::optional<std::int64_t> told = {};
  /// @}

  /// A text for people that says why the journal could not record the outcome; "" if the outcome
  /// was recorded. `result` is correct even if it was not recorded. But then the next call with the
  /// same job name will answer that the outcome is unknown.
  std::string notRecorded = {};
};

/// A named job. The job is printed only once. If its outcome is unknown, it is printed again only
/// when the caller sets `again`, after a person has looked at the paper.
///
///     Journal journal(Journal::defaultFile());
///     NamedJob named(journal, {.name = "receipt 4711", .device = device}, data);
///     if (!named.answer()) {
///       PrintJob job(port, named.recorded());
///       const NamedJobResult result = named.run(job);
///     }
///
/// The beginning of the job is recorded on disk before the first byte of its data is sent. The
/// outcome is recorded before `run` returns it. If the process ends between these records, nobody
/// knows whether the job is on paper.
///
/// While a NamedJob exists, no process can create another NamedJob with the same name in the same
/// journal. The kernel frees the name when the process ends, even if the process is killed. The
/// journal and the data must outlive this object.
class QUOR_EXPORT NamedJob {
 public:
  /// Claims the name. If another process has the name, waits until that process frees it, up to the
  /// time-out in `request`. Throws `std::invalid_argument`, with a message for people, if the name
  /// is invalid. Also throws it if the journal has a job of this name whose data has another length
  /// or SHA-256, unless `isNameEnough` is set. Throws `JournalError` if the journal cannot be read
  /// or locked. Nothing is sent or recorded here.
  NamedJob(Journal& journal, NamedJobRequest request, ByteView data);

  ~NamedJob();
  NamedJob(const NamedJob&) = delete;
  NamedJob& operator=(const NamedJob&) = delete;

  /// Returns the answer that the journal gives without printing; null if the job must be run. The
  /// answer depends on the state of the job in the journal:
  ///
  /// - no such job, or the job was refused: null;
  /// - the job was printed: Printed, with `isRepeated`;
  /// - the outcome is unknown, or the process ended before it recorded an outcome: Unconfirmed,
  ///   with the reason; null if `again` is set;
  /// - another process is still printing the job when the time-out has passed: Unconfirmed; the
  ///   reason says so.
  const std::optional<NamedJobResult>& answer() const { return answer_; }

  /// Returns `options` with a progress function that also records the beginning of the job. Use the
  /// returned options for the `PrintJob` that is passed to `run`.
  PrintJob::Options recorded(PrintJob::Options options = {});

  /// Runs `job`, which must have the options that `recorded` returned, and records its outcome. May
  /// be called once, and only if `answer()` returns null. Throws `JournalError` if the beginning of
  /// the job could not be recorded; then nothing of the job was sent, and `run` has closed the
  /// port. Exceptions of `PrintJob::run` pass through.
  NamedJobResult run(PrintJob& job);

  /// Records the present time as the time at which a person learns that the outcome is unknown.
  /// The answers of later `NamedJob` objects with this name contain this time as `told`. Has no
  /// effect if the journal does not know the name. Throws `JournalError` if the journal cannot be
  /// written.
  void tell();

  /// Records `result` without running the job, for example because the printer could not be
  /// reached. May be called once, instead of `run`.
  NamedJobResult refuse(const PrintResult& result);

 private:
  std::optional<NamedJobResult> answerOf(const std::vector<Attempt>& attempts) const;
  NamedJobResult beingPrinted(const std::vector<Attempt>& attempts) const;
  void checkData(const std::vector<Attempt>& attempts) const;
  void recordBegin();
  NamedJobResult recordEnd(const PrintResult& result);

  Journal& journal_;
  const NamedJobRequest request_;
  const ByteView data_;
  std::optional<ByteLock> lock_;
  std::unique_ptr<Attempt> attempt_;
  std::int64_t refused_ = 0;  // number of the previous attempt, if it sent no byte of the job
  std::optional<NamedJobResult> answer_;
  PrintJob* job_ = nullptr;  // the job that is running
  bool hasBegun_ = false;
  std::optional<JournalError> failure_;
};

}  // namespace quordalvane
