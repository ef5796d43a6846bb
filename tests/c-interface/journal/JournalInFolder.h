#pragma once

#include <quordalvane/QuorJournalC.h>

/* Makes a folder, changes to it, and returns a journal in it. The folder is removed at exit. */
QuorJournal* journalInFolder(void);

/* Makes a named job of the data `receipt`. It does not wait for other processes. The caller frees
 * it. */
QuorNamedJob* namedJob(QuorJournal* journal, const char* name);

/* Prints the job on the virtual printer that `spec` describes. Returns the outcome. */
int32_t printOn(const char* spec, QuorNamedJob* named);

/* Makes a named job of the data `receipt`, and prints it. Returns the outcome. */
int32_t printNamed(QuorJournal* journal, const char* name, const char* spec);

/* Simulates a full disk: from now on, no file of this process can grow. */
void fillDisk(void);

extern const char receipt[];
extern const size_t receiptSize;
