#include "journal/Journal.h"

#include "c-interface/Buffers.h"
#include "c-interface/SameNumber.h"
#include "c-interface/journal/JournalHandles.h"

using namespace quordalvane;
using namespace quordalvane::c;

namespace {

static_assert(sameNumber(QUOR_JOB_REFUSED, JobState::Refused));
static_assert(sameNumber(QUOR_JOB_UNCONFIRMED, JobState::Unconfirmed));
static_assert(sameNumber(QUOR_JOB_PRINTING, JobState::Printing));
static_assert(sameNumber(QUOR_JOB_PRINTED, JobState::Printed));

QuorJobRecord recordOf(const JobRecord& job) {
  return {.name = job.name.c_str(),
          .device = job.device.c_str(),
          .bytes = job.bytes,
          .attempts = job.attempts,
          .begun = job.begun,
          .ended = job.ended.value_or(-1),
          .state = static_cast<int32_t>(job.state),
          .reason = job.reason.c_str()};
}

}  // namespace

QuorCode quor_journal_open(const char* file, QuorJournal** journal) {
  return guardedJournal([&] {
    given(journal, "the pointer that receives the journal") = nullptr;
    *journal =
        new QuorJournal{std::make_shared<Journal>(file == nullptr ? Journal::defaultFile() : file)};
  });
}

void quor_journal_free(QuorJournal* journal) {
  delete journal;
}

QuorCode quor_journal_file(QuorJournal* journal, char* text, size_t capacity, size_t* length) {
  return guardedJournal([&] {
    return copyText(given(journal).file().string(), {text, capacity, length});
  });
}

QuorCode quor_journal_jobs(QuorJournal* journal, QuorJobFunction function, void* context) {
  return guardedJournal([&] {
    given(function, "the function");
    for (const JobRecord& job : given(journal).jobs()) {
      const QuorJobRecord record = recordOf(job);
      function(context, &record);
    }
  });
}

QuorCode quor_journal_forget(QuorJournal* journal, const char* name) {
  return guardedJournal([&] {
    const Forgetting answer = given(journal).forget(&given(name, "the name"));
    succeed(answer != Forgetting::BeingPrinted,
            "the job is being printed; forget it after it has ended");
    return answer == Forgetting::Unknown ? QUOR_NONE : QUOR_OK;
  });
}

QuorCode quor_journal_forget_older_than(QuorJournal* journal, uint32_t days, uint64_t* count) {
  return guardedJournal([&] {
    const std::size_t forgotten = given(journal).forgetOlderThan(days);
    if (count != nullptr) {
      *count = forgotten;
    }
  });
}
