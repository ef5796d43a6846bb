#include "journal/NamedJob.h"

#include <chrono>

#include "c-interface/Buffers.h"
#include "c-interface/Handles.h"
#include "c-interface/journal/JournalHandles.h"

using namespace quordalvane;
using namespace quordalvane::c;

namespace {

NamedJobRequest requestOf(const QuorNamedJobRequest& request) {
  NamedJobRequest result{.name = &given(request.name, "the name"),
                         .device = &given(request.device, "the device"),
                         .again = request.again != 0,
                         .timeout = std::chrono::milliseconds(request.timeout)};
  if (request.waiting != nullptr) {
    result.onWait = [waiting = request.waiting, context = request.context] { waiting(context); };
  }
  return result;
}

NamedJobResult run(QuorNamedJob& named, QuorPrintJob& job) {
  job.progress = named.job.recorded({.progress = std::move(job.progress)}).progress;
  try {
    return named.job.run(job.job);
  } catch (const JournalError& error) {
    job.result.outcome = PrintOutcome::Refused;
    job.result.reason = error.what();
    throw;
  }
}

}  // namespace

QuorCode quor_named_job_create(QuorJournal* journal, const QuorNamedJobRequest* request,
                               const void* data, size_t size, QuorNamedJob** job) {
  return guardedJournal([&] {
    given(job, "the pointer that receives the named job") = nullptr;
    *job = new QuorNamedJob(given(journal, "the journal").journal,
                            requestOf(given(request, "the request")), copyOf(data, size));
  });
}

void quor_named_job_free(QuorNamedJob* job) {
  delete job;
}

int32_t quor_named_job_is_answered(QuorNamedJob* job) {
  return answered(
      [&]() -> int32_t { return given(job, "the named job").job.answer().has_value(); });
}

QuorCode quor_named_job_run(QuorNamedJob* job, QuorPrintJob* print_job) {
  return guardedJournal([&] {
    given(print_job, "the print job");
    given(job, "the named job").end();
    print_job->begin(job->data.size());
    job->told = job->job.answer() ? *job->job.answer() : run(*job, *print_job);
    print_job->result = job->told.result;
  });
}

QuorCode quor_named_job_refuse(QuorNamedJob* job, const char* reason) {
  return guardedJournal([&] {
    PrintResult result;
    result.bytesTotal = given(job, "the named job").data.size();
    result.reason = &given(reason, "the reason");
    if (job->job.answer()) {
      throw CallFailure(
          QUOR_USAGE,
          "the journal shows that this job was begun, so that it cannot be recorded as refused");
    }
    job->end();
    job->told = job->job.refuse(result);
  });
}

int64_t quor_named_job_attempt(QuorNamedJob* job) {
  return answered([&] { return given(job, "the named job").told.attempt; });
}

int32_t quor_named_job_is_repeated(QuorNamedJob* job) {
  return answered([&]() -> int32_t { return given(job, "the named job").told.isRepeated; });
}

QuorCode quor_named_job_not_recorded(QuorNamedJob* job, char* text, size_t capacity,
                                     size_t* length) {
  return guardedJournal([&] {
    const std::string& why = given(job, "the named job").told.notRecorded;
    return copyText(why.empty() ? std::nullopt : std::optional(why), {text, capacity, length});
  });
}
