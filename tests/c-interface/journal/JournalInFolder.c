#include "JournalInFolder.h"

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

#include "Sentences.h"

const char receipt[] = "2 Espresso 3.60\n";
const size_t receiptSize = sizeof receipt - 1;

static char folder[] = "/tmp/quorport-journal-XXXXXX";

static void removeFolder(void) {
  char command[64];
  snprintf(command, sizeof command, "rm -r %s", folder);
  if (system(command) != 0) {
    fprintf(stderr, "%s is left\n", folder);
  }
}

QuorJournal* journalInFolder(void) {
  QuorJournal* journal = NULL;
  REQUIRE(mkdtemp(folder) != NULL);
  REQUIRE(chdir(folder) == 0 && atexit(removeFolder) == 0);
  REQUIRE(quor_journal_open("jobs.db", &journal) == QUOR_OK);
  return journal;
}

void fillDisk(void) {
  const struct rlimit none = {0, 0};
  REQUIRE(signal(SIGXFSZ, SIG_IGN) != SIG_ERR);
  REQUIRE(setrlimit(RLIMIT_FSIZE, &none) == 0);
}

QuorNamedJob* namedJob(QuorJournal* journal, const char* name) {
  const QuorNamedJobRequest request = {.name = name, .device = "virtual:"};
  QuorNamedJob* named = NULL;
  REQUIRE(quor_named_job_create(journal, &request, receipt, receiptSize, &named) == QUOR_OK);
  return named;
}

int32_t printOn(const char* spec, QuorNamedJob* named) {
  QuorPort* port = openPortTo(spec, QUOR_EMULATION_LINE);
  QuorPrintJob* job = NULL;
  REQUIRE(quor_print_job_create(port, 1, NULL, NULL, &job) == QUOR_OK);
  REQUIRE(quor_named_job_run(named, job) == QUOR_OK);
  const int32_t outcome = quor_print_job_outcome(job);
  quor_print_job_free(job);
  done(port);
  return outcome;
}

int32_t printNamed(QuorJournal* journal, const char* name, const char* spec) {
  QuorNamedJob* named = namedJob(journal, name);
  const int32_t outcome = printOn(spec, named);
  quor_named_job_free(named);
  return outcome;
}
