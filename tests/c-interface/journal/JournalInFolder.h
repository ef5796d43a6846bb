#pragma once

#include <quordalvane/QuorJournalC.h>

/* A journal in a folder of its own, which becomes the current one. */
QuorJournal* journalInFolder(void);

/* A named job that waits for nobody, of the data of `receipt`. */
QuorNamedJob* namedJob(QuorJournal* journal, const char* name);

/* Prints it on a virtual printer that the text describes; the outcome. */
int32_t printOn(const char* spec, QuorNamedJob* named);

/* As a program prints under a name, from the claim to the outcome. */
int32_t printNamed(QuorJournal* journal, const char* name, const char* spec);

/* From now on no file of this process may grow: the disk is full. */
void fillDisk(void);

extern const char receipt[];
extern const size_t receiptSize;
