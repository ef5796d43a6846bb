#include "journal/NamedJob.h"

#include <stdexcept>
#include <system_error>
#include <utility>

#include "job/Advice.h"
#include "job/Words.h"
#include "journal/Attempt.h"
#include "journal/History.h"
#include "journal/JobName.h"
#include "journal/JournalFile.h"

namespace quordalvane {
namespace {

std::optional<ByteLock> claimed(const Journal& journal, const NamedJobRequest& request) {
  checkJobName(request.name);
  return withLocksOf(journal.file(), [&](const auto& locks) {
    return ByteLock::take(locks, lockOffset(request.name), modeOfLocks, request.timeout,
                          request.onWait);
  });
}

PrintResult unconfirmed(const Attempt& attempt, const std::string& reason) {
  PrintResult result;
  result.outcome = PrintOutcome::Unconfirmed;
  result.obstacle = attempt.obstacle;
  result.proof = proofOf(attempt);
  result.bytesTotal = attempt.data.bytes;
  // If the end of an attempt was not recorded, nobody knows how many bytes the attempt sent. It may
  // have sent all bytes.
  result.bytesAccepted = attempt.ended ? attempt.bytesAccepted : attempt.data.bytes;
  result.reason = reason;
  result.advice = adviceFor(result);
  return result;
}

PrintResult printed(const Attempt& attempt) {
  PrintResult result;
  result.outcome = PrintOutcome::Printed;
  result.proof = proofOf(attempt);
  result.resultCode = ZKQuorIOResultCodeSuccess;
  result.bytesTotal = attempt.data.bytes;
  result.bytesAccepted = attempt.bytesAccepted;
  return result;
}

}  // namespace

NamedJob::NamedJob(Journal& journal, NamedJobRequest request, ByteView data)
    : journal_(journal),
      request_(std::move(request)),
      data_(data),
      lock_(claimed(journal_, request_)),
      attempt_(std::make_unique<Attempt>()) {
  attempt_->name = request_.name;
  attempt_->device = request_.device;
  attempt_->data = fingerprintOf(data);
  attempt_->begun = millisecondsNow();
  attempt_->proof = nameOf(ProofKind::Auto);
  const auto attempts = journal_.attemptsOf(request_.name);
  checkData(attempts);
  attempt_->number = attempts.empty() ? 1 : attempts.back().number + 1;
  if (!attempts.empty() && stateOf(attempts.back()) == JobState::Refused) {
    refused_ = attempts.back().number;
  }
  answer_ = lock_ ? answerOf(attempts) : beingPrinted(attempts);
}

NamedJob::~NamedJob() = default;

void NamedJob::checkData(const std::vector<Attempt>& attempts) const {
  if (!request_.isNameEnough && !attempts.empty() && attempts.front().data != attempt_->data) {
    throw std::invalid_argument("the name belongs to a job with other data, of " +
                                grouped(attempts.front().data.bytes) +
                                " bytes; each job needs a name of its own");
  }
}

std::optional<NamedJobResult> NamedJob::answerOf(const std::vector<Attempt>& attempts) const {
  if (attempts.empty()) {
    return std::nullopt;
  }
  const Attempt& last = decisive(attempts);
  switch (stateOf(last)) {
    case JobState::Printed:
      return NamedJobResult{.result = printed(last),
                            .attempt = last.number,
                            .isRepeated = true,
                            .begun = last.begun,
                            .told = last.told};
    case JobState::Unconfirmed:
      return request_.again
                 ? std::nullopt
                 : std::optional(NamedJobResult{.result = unconfirmed(last, reasonOf(last)),
                                                .attempt = last.number,
                                                .begun = last.begun,
                                                .told = last.told});
    case JobState::Refused:
    case JobState::Printing:
      break;
  }
  return std::nullopt;
}

/// Answers Unconfirmed and not Refused, because the other process may print the job a moment later.
NamedJobResult NamedJob::beingPrinted(const std::vector<Attempt>& attempts) const {
  const auto millis = static_cast<std::uint32_t>(request_.timeout.count());
  return {.result = unconfirmed(*attempt_,
                                "another process is printing this job, and has not "
                                "ended within " +
                                    inSeconds(millis)),
          .attempt = attempts.empty() ? 0 : attempts.back().number};
}

PrintJob::Options NamedJob::recorded(PrintJob::Options options) {
  options.progress = [this, next = std::move(options.progress)](const PrintProgress& progress) {
    if (progress.stage == PrintStage::Data && !hasBegun_) {
      recordBegin();
    }
    if (next) {
      next(progress);
    }
  };
  return options;
}

/// The job calls this function in the middle of a checked block. If the record cannot be written,
/// this function cancels the job and does not throw, because an exception would leave the printer
/// inside the block.
void NamedJob::recordBegin() {
  if (failure_) {
    return;
  }
  try {
    journal_.write(*attempt_, refused_);
    hasBegun_ = true;
  } catch (const JournalError& error) {
    failure_ = error;
    job_->cancel();
  }
}

NamedJobResult NamedJob::run(PrintJob& job) {
  job_ = &job;
  const PrintResult result = job.run(data_);
  if (failure_) {
    throw *failure_;
  }
  return recordEnd(result);
}

void NamedJob::tell() {
  const auto attempts = journal_.attemptsOf(request_.name);
  if (attempts.empty()) {
    return;
  }
  Attempt told = decisive(attempts);
  told.told = millisecondsNow();
  journal_.write(told, told.number);
}

NamedJobResult NamedJob::refuse(const PrintResult& result) {
  return recordEnd(result);
}

NamedJobResult NamedJob::recordEnd(const PrintResult& result) {
  Attempt ended = *attempt_;
  ended.ended = millisecondsNow();
  ended.outcome = nameOf(result.outcome);
  ended.bytesAccepted = result.bytesAccepted;
  ended.reason = result.reason;
  ended.proof = nameOf(result.proof);
  ended.obstacle = result.obstacle;
  NamedJobResult named{.result = result, .attempt = ended.number};
  try {
    journal_.write(ended, hasBegun_ ? ended.number : refused_);
  } catch (const JournalError& error) {
    named.notRecorded = error.what();
  }
  return named;
}

}  // namespace quordalvane
