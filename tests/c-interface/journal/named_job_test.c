#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "JournalInFolder.h"
#include "Sentences.h"

static QuorPrintJob* jobOn(QuorPort* port, QuorProgress progress, void* context) {
  QuorPrintJob* job = NULL;
  REQUIRE(quor_print_job_create(port, 1, progress, context, &job) == QUOR_OK);
  return job;
}

static void AJobWithANewNameIsPrintedAndRecorded(void) {
  QuorJournal* journal = journalInFolder();
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  char text[8] = "";
  EXPECT(quor_named_job_is_answered(named) == 0);
  EXPECT(quor_named_job_attempt(named) == 0);
  EXPECT(printOn("virtual:", named) == QUOR_PRINTED);
  EXPECT(quor_named_job_attempt(named) == 1);
  EXPECT(quor_named_job_is_repeated(named) == 0);
  EXPECT(quor_named_job_not_recorded(named, text, sizeof text, NULL) == QUOR_NONE);
  quor_named_job_free(named);
  quor_named_job_free(NULL);
  quor_journal_free(journal);
}

static void ARepeatedPrintedJobIsAnsweredWithoutThePort(void) {
  QuorJournal* journal = journalInFolder();
  EXPECT(printNamed(journal, "receipt 1", "virtual:") == QUOR_PRINTED);
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_LINE); /* is never opened */
  QuorPrintJob* job = jobOn(port, NULL, NULL);
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  EXPECT(quor_named_job_is_answered(named) == 1);
  EXPECT(quor_named_job_is_repeated(named) == 1);
  EXPECT(quor_named_job_attempt(named) == 1);
  EXPECT(quor_named_job_run(named, job) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_PRINTED);
  EXPECT(quor_print_job_bytes_accepted(job) == receiptSize);
  EXPECT_FAILURE(quor_named_job_refuse(named, "no printer"), QUOR_USAGE, "was begun");
  quor_named_job_free(named);
  quor_print_job_free(job);
  done(port);
  quor_journal_free(journal);
}

static void exitInTheMiddle(void* context, uint64_t accepted, uint64_t total) {
  (void)context;
  (void)total;
  if (accepted > 0) {
    _exit(0);
  }
}

/* Starts a process that begins to print the job of this name, and ends after the first bytes. */
static void dieInTheMiddle(const char* name) {
  const pid_t process = fork();
  int status = -1;
  if (process == 0) {
    QuorJournal* journal = NULL;
    REQUIRE(quor_journal_open("jobs.db", &journal) == QUOR_OK);
    quor_named_job_run(namedJob(journal, name),
                       jobOn(openPortTo("virtual:", QUOR_EMULATION_LINE), exitInTheMiddle, NULL));
    _exit(1);
  }
  REQUIRE(waitpid(process, &status, 0) == process && status == 0);
}

static void AnUnfinishedJobIsUnconfirmedAndPrintedAgainOnlyOnRequest(void) {
  QuorJournal* journal = journalInFolder();
  dieInTheMiddle("receipt 1");
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port, NULL, NULL);
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  char text[256] = "";
  EXPECT(quor_named_job_is_answered(named) == 1);
  EXPECT(quor_named_job_run(named, job) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_UNCONFIRMED);
  EXPECT(quor_print_job_reason(job, text, sizeof text, NULL) == QUOR_OK);
  EXPECT(strstr(text, "ended too early; up to 16 bytes were sent") != NULL);
  EXPECT(quor_named_job_is_repeated(named) == 0);
  quor_named_job_free(named);
  quor_print_job_free(job);
  done(port);
  const QuorNamedJobRequest again = {.name = "receipt 1", .device = "virtual:", .again = 1};
  REQUIRE(quor_named_job_create(journal, &again, receipt, receiptSize, &named) == QUOR_OK);
  EXPECT(printOn("virtual:", named) == QUOR_PRINTED);
  EXPECT(quor_named_job_attempt(named) == 2);
  quor_named_job_free(named);
  quor_journal_free(journal);
}

static void AJobForAnUnreachablePrinterIsRecordedAndPrintedLater(void) {
  QuorJournal* journal = journalInFolder();
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  EXPECT(quor_named_job_refuse(named, "cannot be reached") == QUOR_OK);
  EXPECT(quor_named_job_attempt(named) == 1);
  EXPECT_FAILURE(quor_named_job_refuse(named, "twice"), QUOR_USAGE, "once");
  quor_named_job_free(named);
  named = namedJob(journal, "receipt 1");
  EXPECT(printOn("virtual:", named) == QUOR_PRINTED);
  EXPECT(quor_named_job_attempt(named) == 2);
  quor_named_job_free(named);
  quor_journal_free(journal);
}

static void countWaits(void* context) {
  ++*(unsigned*)context;
}

static void AJobIsUnconfirmedIfAnotherJobHasItsNamePastTheTimeout(void) {
  QuorJournal* journal = journalInFolder();
  QuorNamedJob* held = namedJob(journal, "receipt 1");
  unsigned waits = 0;
  const QuorNamedJobRequest request = {.name = "receipt 1",
                                       .device = "virtual:",
                                       .timeout = 20,
                                       .waiting = countWaits,
                                       .context = &waits};
  QuorNamedJob* second = NULL;
  REQUIRE(quor_named_job_create(journal, &request, receipt, receiptSize, &second) == QUOR_OK);
  EXPECT(waits == 1);
  EXPECT(quor_named_job_is_answered(second) == 1);
  EXPECT(printOn("virtual:", second) == QUOR_UNCONFIRMED);
  quor_named_job_free(second);
  quor_named_job_free(held);
  quor_journal_free(journal);
}

static void AnInvalidNameOrOtherDataUnderAKnownNameIsAUsageError(void) {
  QuorJournal* journal = journalInFolder();
  QuorNamedJobRequest request = {.name = "a\nb", .device = "virtual:"};
  QuorNamedJob* named = NULL;
  EXPECT_FAILURE(quor_named_job_create(journal, &request, receipt, receiptSize, &named), QUOR_USAGE,
                 "1 to 255 bytes");
  EXPECT(printNamed(journal, "receipt 1", "virtual:") == QUOR_PRINTED);
  request.name = "receipt 1";
  EXPECT_FAILURE(quor_named_job_create(journal, &request, "Tea", 3, &named), QUOR_USAGE,
                 "other data, of 16 bytes");
  EXPECT(named == NULL);
  quor_journal_free(journal);
}

static void ANamedJobCanBeCancelled(void) {
  QuorJournal* journal = journalInFolder();
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port, NULL, NULL);
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  quor_print_job_cancel(job);
  EXPECT(quor_named_job_run(named, job) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_REFUSED);
  EXPECT(quor_print_job_obstacle(job) == QUOR_OBSTACLE_CANCELLED);
  quor_named_job_free(named);
  quor_print_job_free(job);
  done(port);
  quor_journal_free(journal);
}

static void note(void* context, uint64_t accepted, uint64_t total) {
  *(uint64_t*)context = accepted;
  EXPECT(total == receiptSize);
}

static void ANamedJobReportsItsProgress(void) {
  QuorJournal* journal = journalInFolder();
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  uint64_t accepted = 0;
  QuorPrintJob* job = jobOn(port, note, &accepted);
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  EXPECT(quor_named_job_run(named, job) == QUOR_OK);
  EXPECT(accepted == receiptSize);
  EXPECT_FAILURE(quor_named_job_run(named, job), QUOR_USAGE, "once");
  EXPECT_FAILURE(quor_print_job_run(job, receipt, receiptSize), QUOR_USAGE, "once");
  quor_named_job_free(named);
  quor_print_job_free(job);
  done(port);
  quor_journal_free(journal);
}

static void AJobWhoseBeginningCannotBeRecordedSendsNothing(void) {
  QuorJournal* journal = journalInFolder();
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port, NULL, NULL);
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  char text[256] = "";
  fillDisk();
  EXPECT_FAILURE(quor_named_job_run(named, job), QUOR_NO_JOURNAL, "jobs.db");
  EXPECT(quor_print_job_outcome(job) == QUOR_REFUSED);
  EXPECT(quor_print_job_bytes_accepted(job) == 0);
  EXPECT(quor_print_job_reason(job, text, sizeof text, NULL) == QUOR_OK);
  EXPECT(strstr(text, "jobs.db") != NULL);
  EXPECT(quor_port_is_connected(port) == 0);
  quor_named_job_free(named);
  quor_print_job_free(job);
  done(port);
  quor_journal_free(journal);
}

static void fillDiskOnce(void* context, uint64_t accepted, uint64_t total) {
  (void)context;
  (void)total;
  if (accepted > 0) {
    fillDisk();
  }
}

static void AJobWhoseOutcomeCannotBeRecordedReturnsAWarning(void) {
  QuorJournal* journal = journalInFolder();
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port, fillDiskOnce, NULL);
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  char text[256] = "";
  EXPECT(quor_named_job_run(named, job) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_PRINTED);
  EXPECT(quor_named_job_not_recorded(named, text, sizeof text, NULL) == QUOR_OK);
  EXPECT(strstr(text, "jobs.db: ") != NULL);
  quor_named_job_free(named);
  quor_print_job_free(job);
  done(port);
  quor_journal_free(journal);
}

static void ANamedJobCanRunAfterTheJournalHandleIsFreed(void) {
  QuorJournal* journal = journalInFolder();
  QuorNamedJob* named = namedJob(journal, "receipt 1");
  quor_journal_free(journal);
  EXPECT(printOn("virtual:", named) == QUOR_PRINTED);
  quor_named_job_free(named);
}

static void ANamedJobFunctionRefusesANullPointer(void) {
  QuorJournal* journal = journalInFolder();
  QuorNamedJobRequest request = {.name = "a", .device = "virtual:"};
  QuorNamedJob* named = NULL;
  EXPECT_FAILURE(quor_named_job_create(NULL, &request, "x", 1, &named), QUOR_USAGE, "journal");
  EXPECT_FAILURE(quor_named_job_create(journal, NULL, "x", 1, &named), QUOR_USAGE, "request");
  EXPECT_FAILURE(quor_named_job_create(journal, &request, NULL, 1, &named), QUOR_USAGE, "data");
  EXPECT_FAILURE(quor_named_job_create(journal, &request, "x", 1, NULL), QUOR_USAGE,
                 "pointer that receives");
  request.device = NULL;
  EXPECT_FAILURE(quor_named_job_create(journal, &request, "x", 1, &named), QUOR_USAGE, "device");
  named = namedJob(journal, "a");
  EXPECT_FAILURE(quor_named_job_run(named, NULL), QUOR_USAGE, "print job");
  EXPECT_FAILURE(quor_named_job_refuse(named, NULL), QUOR_USAGE, "reason");
  EXPECT_FAILURE(quor_named_job_run(NULL, NULL), QUOR_USAGE, "job");
  EXPECT(quor_named_job_attempt(NULL) == 0);
  EXPECT(printOn("virtual:", named) == QUOR_PRINTED); /* none of these was its one run */
  quor_named_job_free(named);
  quor_journal_free(journal);
}

const Sentence namedJobSentences[] = {
    SENTENCE(AJobWithANewNameIsPrintedAndRecorded),
    SENTENCE(ARepeatedPrintedJobIsAnsweredWithoutThePort),
    SENTENCE(AnUnfinishedJobIsUnconfirmedAndPrintedAgainOnlyOnRequest),
    SENTENCE(AJobForAnUnreachablePrinterIsRecordedAndPrintedLater),
    SENTENCE(AJobIsUnconfirmedIfAnotherJobHasItsNamePastTheTimeout),
    SENTENCE(AnInvalidNameOrOtherDataUnderAKnownNameIsAUsageError),
    SENTENCE(ANamedJobCanBeCancelled),
    SENTENCE(ANamedJobReportsItsProgress),
    SENTENCE(AJobWhoseBeginningCannotBeRecordedSendsNothing),
    SENTENCE(AJobWhoseOutcomeCannotBeRecordedReturnsAWarning),
    SENTENCE(ANamedJobCanRunAfterTheJournalHandleIsFreed),
    SENTENCE(ANamedJobFunctionRefusesANullPointer),
    {NULL, NULL},
};
