#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <quordalvane/QuorExport.h>

#include "job/PrintJob.h"
#include "journal/Journal.h"
#include "locks/ByteLock.h"

namespace quordalvane {

/// The name of a job, and the way to treat it.
struct NamedJobRequest {
  std::string name;    ///< 1 to 255 bytes of UTF-8 without control characters
  std::string device;  ///< the text of the device, for those who read the journal

  /// True: print a job again of which nobody knows whether it is on paper. Somebody has looked.
  bool again = false;

  /// True: the name alone identifies the job, since its data may differ from call to call; a filter
  /// that makes them writes the time into them, for example.
  bool isNameEnough = false;

  /// How long to wait for another process that prints the job; zero: not at all.
  std::chrono::milliseconds timeout = std::chrono::seconds(10);

  /// Called once, on the thread of the constructor, if another process prints the job. May be
  /// empty.
  std::function<void()> onWait = {};
};

/// The result of a job under a name.
struct NamedJobResult {
  PrintResult result;        ///< of the attempt that decides
  std::int64_t attempt = 0;  ///< its number, 1 for the first; 0 if there was no attempt
  bool isRepeated = false;   ///< true: it was printed by an earlier call, and this one sent nothing

  /// Of an answer without printing: when that attempt began, and when a person was told that nobody
  /// knows, see `NamedJob::tell`. Milliseconds since 1970, UTC.
  /// @{
  std::int64_t begun = 0;
  std::optional<std::int64_t> told = {};
  /// @}

  /// Why the outcome could not be recorded, for a person; "" if it was. The outcome is true all the
  /// same, and the next call under the name answers that nobody knows.
  std::string notRecorded = {};
};

/// A job under a name, which is on paper once, or a person is asked.
///
///     Journal journal(Journal::defaultFile());
///     NamedJob named(journal, {.name = "receipt 4711", .device = device}, data);
///     if (!named.answer()) {
///       PrintJob job(port, named.recorded());
///       const NamedJobResult result = named.run(job);
///     }
///
/// "Begun" is on disk before the first byte of the job is sent, and the outcome is before it is
/// returned. If a process ends in between, nobody knows whether its job is on paper; the job is not
/// sent again unless `again` is set.
///
/// As long as this lives, no other one has the same name in the same journal; the kernel gives the
/// name back when the process ends in any way. It must not outlive its journal or its data.
class QUOR_EXPORT NamedJob {
 public:
  /// Claims the name, waiting as long as the request says. Throws `std::invalid_argument`, with a
  /// text for people, if the name is invalid or is known with other data (length or SHA-256);
  /// `JournalError` if the journal cannot be read or locked. Nothing is sent or recorded here.
  NamedJob(Journal& journal, NamedJobRequest request, std::span<const std::uint8_t> data);

  ~NamedJob();
  NamedJob(const NamedJob&) = delete;
  NamedJob& operator=(const NamedJob&) = delete;

  /// The journal's answer without printing; empty if the job must be run:
  ///
  /// | known of the name | answer |
  /// |---|---|
  /// | nothing, or refused | empty |
  /// | printed | Printed, with `isRepeated` |
  /// | unconfirmed, or begun by a process that has ended | Unconfirmed with the cause; with `again`
  /// empty | | being printed by a process that has not ended in time | Unconfirmed, which says so |
  const std::optional<NamedJobResult>& answer() const { return answer_; }

  /// The options of a `PrintJob` that is handed to `run`: those given, with a progress function
  /// that also records that the job has begun.
  PrintJob::Options recorded(PrintJob::Options options = {});

  /// Runs `job`, which was made with the options of `recorded`, and records its outcome. Called
  /// once, if there is no answer. Throws `JournalError` if its beginning could not be recorded;
  /// nothing of the job was sent then, and the port is closed. Exceptions of `PrintJob::run` pass
  /// through.
  NamedJobResult run(PrintJob& job);

  /// Records that a person is being told, now, that nobody knows whether the job is on paper. A
  /// later call answers with that moment. No effect on an unknown name. Throws `JournalError`.
  void tell();

  /// Records instead that nothing was sent, because of `result`: the printer could not be reached,
  /// for example. Called once, if there is no answer.
  NamedJobResult refuse(const PrintResult& result);

 private:
  std::optional<NamedJobResult> answerOf(const std::vector<Attempt>& attempts) const;
  NamedJobResult beingPrinted(const std::vector<Attempt>& attempts) const;
  void checkData(const std::vector<Attempt>& attempts) const;
  void recordBegin();
  NamedJobResult recordEnd(const PrintResult& result);

  Journal& journal_;
  const NamedJobRequest request_;
  const std::span<const std::uint8_t> data_;
  std::optional<ByteLock> lock_;
  std::unique_ptr<Attempt> attempt_;
  std::unique_ptr<Attempt> refused_;  // the attempt before, if no byte of it was sent
  std::optional<NamedJobResult> answer_;
  PrintJob* job_ = nullptr;  // that runs
  bool hasBegun_ = false;
  std::optional<JournalError> failure_;
};

}  // namespace quordalvane
