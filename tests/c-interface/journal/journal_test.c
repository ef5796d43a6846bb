#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "JournalInFolder.h"
#include "Sentences.h"

static void AJournalReturnsThePathOfItsFile(void) {
  QuorJournal* journal = journalInFolder();
  char path[256] = "";
  size_t length = 0;
  EXPECT(quor_journal_file(journal, path, sizeof path, &length) == QUOR_OK);
  EXPECT(path[0] == '/' && strlen(path) == length && strstr(path, "/jobs.db") != NULL);
  EXPECT(access(path, R_OK) == 0);
  EXPECT_FAILURE(quor_journal_file(journal, path, 3, NULL), QUOR_BUFFER_TOO_SMALL, "3 bytes");
  quor_journal_free(journal);
  quor_journal_free(NULL);
}

static void AJournalWithoutAFileNameIsInTheStateFolder(void) {
  QuorJournal* journal = journalInFolder();
  char here[256] = "";
  char path[512] = "";
  quor_journal_free(journal);
  REQUIRE(getcwd(here, sizeof here) != NULL && setenv("XDG_STATE_HOME", here, 1) == 0);
  REQUIRE(quor_journal_open(NULL, &journal) == QUOR_OK);
  EXPECT(quor_journal_file(journal, path, sizeof path, NULL) == QUOR_OK);
  EXPECT(strstr(path, "/quorport/jobs.db") != NULL);
  quor_journal_free(journal);
}

static void AJournalThatCannotBeOpenedHasItsOwnErrorCode(void) {
  QuorJournal* journal = NULL;
  EXPECT_FAILURE(quor_journal_open("/proc/jobs.db", &journal), QUOR_NO_JOURNAL, "/proc/jobs.db: ");
  EXPECT(journal == NULL);
  EXPECT_FAILURE(quor_journal_open("", &journal), QUOR_NO_JOURNAL, "empty");
}

typedef struct Seen {
  unsigned jobs;
  char names[64];
  QuorJobRecord last;
} Seen;

static void see(void* context, const QuorJobRecord* job) {
  Seen* seen = context;
  ++seen->jobs;
  seen->last = *job;
  strncat(seen->names, job->name, sizeof seen->names - strlen(seen->names) - 1);
  EXPECT(strcmp(job->device, "virtual:") == 0);
  EXPECT((job->reason[0] == '\0') == (job->state == QUOR_JOB_PRINTED));
}

static void EachJobOfAJournalIsListedByItsName(void) {
  QuorJournal* journal = journalInFolder();
  Seen seen = {0};
  EXPECT(quor_journal_jobs(journal, see, &seen) == QUOR_OK);
  EXPECT(seen.jobs == 0);
  EXPECT(printNamed(journal, "b", "virtual:") == QUOR_PRINTED);
  EXPECT(printNamed(journal, "a", "virtual:coverOpen=true") == QUOR_REFUSED);
  EXPECT(quor_journal_jobs(journal, see, &seen) == QUOR_OK);
  EXPECT(seen.jobs == 2 && strcmp(seen.names, "ab") == 0);
  EXPECT(seen.last.state == QUOR_JOB_PRINTED);
  EXPECT(seen.last.bytes == receiptSize && seen.last.attempts == 1);
  EXPECT(seen.last.begun > 1700000000000 && seen.last.ended >= seen.last.begun);
  quor_journal_free(journal);
}

static void AJobThatIsBeingPrintedCannotBeForgotten(void) {
  QuorJournal* journal = journalInFolder();
  Seen seen = {0};
  EXPECT(printNamed(journal, "a", "virtual:coverOpen=true") == QUOR_REFUSED);
  QuorNamedJob* held = namedJob(journal, "a");
  EXPECT(quor_journal_jobs(journal, see, &seen) == QUOR_OK);
  EXPECT(seen.last.state == QUOR_JOB_PRINTING);
  EXPECT_FAILURE(quor_journal_forget(journal, "a"), QUOR_FAILED, "being printed");
  quor_named_job_free(held);
  EXPECT(quor_journal_forget(journal, "a") == QUOR_OK);
  quor_journal_free(journal);
}

static void AForgottenJobIsPrintedAsANewJob(void) {
  QuorJournal* journal = journalInFolder();
  EXPECT(printNamed(journal, "a", "virtual:") == QUOR_PRINTED);
  EXPECT(quor_journal_forget(journal, "a") == QUOR_OK);
  EXPECT(quor_journal_forget(journal, "a") == QUOR_NONE);
  QuorNamedJob* named = namedJob(journal, "a");
  EXPECT(quor_named_job_is_answered(named) == 0);
  quor_named_job_free(named);
  quor_journal_free(journal);
}

static void OlderJobsAreForgottenAndTheirNumberIsReturned(void) {
  QuorJournal* journal = journalInFolder();
  uint64_t count = 7;
  EXPECT(printNamed(journal, "a", "virtual:") == QUOR_PRINTED);
  EXPECT(quor_journal_forget_older_than(journal, 1, &count) == QUOR_OK && count == 0);
  EXPECT(quor_journal_forget_older_than(journal, 0, NULL) == QUOR_OK);
  EXPECT(quor_journal_forget(journal, "a") == QUOR_NONE);
  quor_journal_free(journal);
}

static void AJournalFunctionRefusesANullPointer(void) {
  QuorJournal* journal = journalInFolder();
  EXPECT_FAILURE(quor_journal_open("jobs.db", NULL), QUOR_USAGE,
                 "pointer that receives the journal");
  EXPECT_FAILURE(quor_journal_jobs(NULL, see, NULL), QUOR_USAGE, "journal");
  EXPECT_FAILURE(quor_journal_jobs(journal, NULL, NULL), QUOR_USAGE, "function");
  EXPECT_FAILURE(quor_journal_forget(journal, NULL), QUOR_USAGE, "name");
  EXPECT_FAILURE(quor_journal_forget_older_than(NULL, 1, NULL), QUOR_USAGE, "journal");
  EXPECT_FAILURE(quor_journal_file(NULL, NULL, 0, NULL), QUOR_USAGE, "journal");
  quor_journal_free(journal);
}

const Sentence journalSentences[] = {
    SENTENCE(AJournalReturnsThePathOfItsFile),
    SENTENCE(AJournalWithoutAFileNameIsInTheStateFolder),
    SENTENCE(AJournalThatCannotBeOpenedHasItsOwnErrorCode),
    SENTENCE(EachJobOfAJournalIsListedByItsName),
    SENTENCE(AJobThatIsBeingPrintedCannotBeForgotten),
    SENTENCE(AForgottenJobIsPrintedAsANewJob),
    SENTENCE(OlderJobsAreForgottenAndTheirNumberIsReturned),
    SENTENCE(AJournalFunctionRefusesANullPointer),
    {NULL, NULL},
};
