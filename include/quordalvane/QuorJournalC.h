#ifndef QUORDALVANE_QUORJOURNALC_H
#define QUORDALVANE_QUORJOURNALC_H

#include <quordalvane/QuorIOPortC.h>

/** @file
 * Jobs under a name, for programs that are not written in C++: a job is on paper once, or a person
 * is asked, even if the program is killed at any moment. These functions are in libQuorJournal.
 *
 *     quor_print_job_create(port, 1, NULL, NULL, &job);
 *     quor_named_job_create(journal, &request, data, size, &named);
 *     if (quor_named_job_is_answered(named) || quor_port_open(port) == QUOR_OK) {
 *       quor_named_job_run(named, job);
 *     } else {
 *       quor_named_job_refuse(named, quor_last_error());
 *     }
 *
 * What QuorIOPortC.h says of errors, texts, handles and time-outs holds here as well. A journal and
 * its named jobs belong to one thread at a time; many processes may use one file at once.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Journal --------------------------------------------------------------------------------- */

/** The file in which jobs are recorded under their names. */
typedef struct QuorJournal QuorJournal;

/** Opens a journal, and makes it, for this user alone, if it is not there. A null `file` is
 * quorport/jobs.db in $XDG_STATE_HOME, or in ~/.local/state without that. QUOR_NO_JOURNAL if the
 * file cannot be read and written, is damaged, no journal or of a later version of this library, or
 * lies on a network file system. */
QUOR_EXPORT QuorCode quor_journal_open(const char* file, QuorJournal** journal);

/** Gives the handle back; named jobs keep the journal as long as they live. */
QUOR_EXPORT void quor_journal_free(QuorJournal* journal);

/** The path of the file, through all links. */
QUOR_EXPORT QuorCode quor_journal_file(QuorJournal* journal, char* text, size_t capacity,
                                       size_t* length);

/** What a journal knows of a job. */
enum {
  QUOR_JOB_REFUSED = 0,     /**< nothing of it went out in any attempt */
  QUOR_JOB_UNCONFIRMED = 1, /**< nobody knows whether it is on paper */
  QUOR_JOB_PRINTING = 2,    /**< a process that lives prints it */
  QUOR_JOB_PRINTED = 3      /**< the printer confirmed it */
};

/** One job of a journal. Its texts are the library's, and end with the call that shows them. */
typedef struct QuorJobRecord {
  const char* name;   /**< of the job */
  const char* device; /**< the text of the device that it was for */
  uint64_t bytes;     /**< the length of its data */
  int64_t attempts;   /**< how many there were */
  int64_t begun;      /**< milliseconds since 1970, UTC, by the clock of then */
  int64_t ended;      /**< likewise; -1 if its end was not recorded */
  int32_t state;      /**< one of the states above */
  const char* reason; /**< why it was not printed, for a person; "" when it was */
} QuorJobRecord;

/** Is given one job, with the context of the call. */
typedef void (*QuorJobFunction)(void* context, const QuorJobRecord* job);

/** Shows each job to `function`, by name, before it returns. QUOR_NO_JOURNAL if the file cannot be
 * read. */
QUOR_EXPORT QuorCode quor_journal_jobs(QuorJournal* journal, QuorJobFunction function,
                                       void* context);

/** Takes a job out: a later call under its name prints it, even if it is on paper. QUOR_NONE if
 * there is none of this name, QUOR_FAILED while a process prints it, QUOR_NO_JOURNAL if the file
 * cannot be written. */
QUOR_EXPORT QuorCode quor_journal_forget(QuorJournal* journal, const char* name);

/** Takes out the jobs whose last attempt began more than `days` days ago, except those that are
 * being printed. `*count`, which may be null, is how many. QUOR_NO_JOURNAL as above. */
QUOR_EXPORT QuorCode quor_journal_forget_older_than(QuorJournal* journal, uint32_t days,
                                                    uint64_t* count);

/* ---- Named job ------------------------------------------------------------------------------- */

/** Called once, on the calling thread, if a call has to wait for another process. */
typedef void (*QuorWaiting)(void* context);

/** What a job is called, and how it is to be treated. */
typedef struct QuorNamedJobRequest {
  const char* name;   /**< 1 to 255 bytes of UTF-8 without control characters */
  const char* device; /**< the text of the device, for those who read the journal */

  /** Other than 0: print a job again of which nobody knows whether it is on paper. Somebody has
   * looked. */
  int32_t again;

  /** How long to wait for another process that prints the job; 0: not at all. */
  uint32_t timeout;

  QuorWaiting waiting; /**< may be null */
  void* context;       /**< for `waiting` */
} QuorNamedJobRequest;

/** A job that has a name. As long as it lives, no other one has the same name in the same journal;
 * the kernel gives the name back when the process ends, whatever ends it. */
typedef struct QuorNamedJob QuorNamedJob;

/** Claims the name for `size` bytes of data, waiting as long as the request says. Nothing is sent
 * or recorded. QUOR_USAGE if the name is none, or is known with other data; QUOR_NO_JOURNAL if the
 * journal cannot be read or locked. */
QUOR_EXPORT QuorCode quor_named_job_create(QuorJournal* journal, const QuorNamedJobRequest* request,
                                           const void* data, size_t size, QuorNamedJob** job);

/** Gives the name back. */
QUOR_EXPORT void quor_named_job_free(QuorNamedJob* job);

/** 1 if the journal knows the outcome without printing: the job is printed, or nobody knows whether
 * it is on paper, or another process prints it still. 0 if it must be run. */
QUOR_EXPORT int32_t quor_named_job_is_answered(QuorNamedJob* job);

/** Has `print_job` print the data, with "begun" on disk before the first byte is sent, and the
 * outcome before this returns. A job that is answered takes that answer instead, and nothing is
 * asked of its port. Either way the functions of `print_job` return its result. Called once,
 * with a print job that has not run; QUOR_USAGE otherwise. QUOR_NO_JOURNAL if the beginning could
 * not be recorded: nothing of the job was sent then, and the port is closed. Otherwise as
 * quor_print_job_run. */
QUOR_EXPORT QuorCode quor_named_job_run(QuorNamedJob* job, QuorPrintJob* print_job);

/** Records instead that nothing was sent, for this reason: the printer cannot be reached, for
 * example. QUOR_USAGE for a job that is answered or was run. */
QUOR_EXPORT QuorCode quor_named_job_refuse(QuorNamedJob* job, const char* reason);

/** The number of the attempt that decides, 1 for the first; 0 before there is one. */
QUOR_EXPORT int64_t quor_named_job_attempt(QuorNamedJob* job);

/** 1 if the job was printed by an earlier call, and this one sends nothing. */
QUOR_EXPORT int32_t quor_named_job_is_repeated(QuorNamedJob* job);

/** Why the outcome could not be recorded, for a person; QUOR_NONE if it was. The outcome is true
 * all the same, and the next call under the name answers that nobody knows. */
QUOR_EXPORT QuorCode quor_named_job_not_recorded(QuorNamedJob* job, char* text, size_t capacity,
                                                 size_t* length);

/* ---- Turns ----------------------------------------------------------------------------------- */

/** A printer that one job has for itself, among the jobs of this machine that ask for a turn. */
typedef struct QuorTurn QuorTurn;

/** Takes the printer that the text of a device names, and waits for at most `timeout` while another
 * job has it. The turn ends when it is freed, or with the process. QUOR_NONE, and null in `*turn`,
 * for a printer that nobody else can have, such as "virtual:"; QUOR_FAILED if another job has it
 * still; QUOR_USAGE for a text that is no device; QUOR_UNEXPECTED if the file of the locks cannot
 * be used. `waiting` may be null. */
QUOR_EXPORT QuorCode quor_turn_take(const char* device, uint32_t timeout, QuorWaiting waiting,
                                    void* context, QuorTurn** turn);

/** Gives the printer to the next job. */
QUOR_EXPORT void quor_turn_free(QuorTurn* turn);

#ifdef __cplusplus
}
#endif

#endif
