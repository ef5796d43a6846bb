#ifndef QUORDALVANE_QUORJOURNALC_H
#define QUORDALVANE_QUORJOURNALC_H

#include <quordalvane/QuorIOPortC.h>

/** @file
 * Named jobs, for programs that are not written in C++. A named job is printed only once. If its
 * outcome is unknown, it is printed again only when the caller sets `again`, after a person has
 * looked at the paper. Both rules hold even if the program is killed at any moment. These functions
 * are in the library libQuorJournal.
 *
 *     quor_print_job_create(port, 1, NULL, NULL, &job);
 *     quor_named_job_create(journal, &request, data, size, &named);
 *     if (quor_named_job_is_answered(named) || quor_port_open(port) == QUOR_OK) {
 *       quor_named_job_run(named, job);
 *     } else {
 *       quor_named_job_refuse(named, quor_last_error());
 *     }
 *
 * The rules of QuorIOPortC.h for errors, texts, handles and time-outs apply here as well. Only one
 * thread at a time may use a journal and its named jobs. Several processes may use one file at the
 * same time.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Journal --------------------------------------------------------------------------------- */

/** A file in which jobs are recorded under their names. */
typedef struct QuorJournal QuorJournal;

/** Opens a journal. If the file is missing, it is created; only this user may read and write the
 * new file. If `file` is null, the file is quorport/jobs.db in $XDG_STATE_HOME, or in
 * ~/.local/state if this variable is not set. Returns QUOR_NO_JOURNAL if the file cannot be read
 * and written, is damaged, is not a journal, was written by a later version of this library, is on
 * a network file system, or has more than one hard link. */
QUOR_EXPORT QuorCode quor_journal_open(const char* file, QuorJournal** journal);

/** Frees the handle. Named jobs that still exist keep the journal open. */
QUOR_EXPORT void quor_journal_free(QuorJournal* journal);

/** Copies the path of the file, with all symbolic links resolved. */
QUOR_EXPORT QuorCode quor_journal_file(QuorJournal* journal, char* text, size_t capacity,
                                       size_t* length);

/** The state of a job in a journal. */
enum {
  QUOR_JOB_REFUSED = 0,     /**< no attempt sent any byte of the job */
  QUOR_JOB_UNCONFIRMED = 1, /**< nobody knows whether the job is on paper */
  QUOR_JOB_PRINTING = 2,    /**< a running process is printing the job */
  QUOR_JOB_PRINTED = 3      /**< the printer confirmed that the job was printed */
};

/** One job of a journal. The library owns its texts, which are valid only during the call that
 * receives the record. */
typedef struct QuorJobRecord {
  const char* name;   /**< the name of the job */
  const char* device; /**< the device text of the job's printer */
  uint64_t bytes;     /**< the length of the job's data */
  int64_t attempts;   /**< the number of attempts so far */
  int64_t begun;      /**< when the latest attempt began, in milliseconds since 1970, UTC */
  int64_t ended; /**< when that attempt ended, in the same unit; -1 if the end was not recorded */
  int32_t state; /**< one of the states above */
  const char* reason; /**< why the job was not printed, for a person; "" if it was printed */
} QuorJobRecord;

/** Receives one job. `context` is the pointer that was passed to quor_journal_jobs. */
typedef void (*QuorJobFunction)(void* context, const QuorJobRecord* job);

/** Calls `function` once for each job, in the order of the names. Returns QUOR_NO_JOURNAL if the
 * file cannot be read. */
QUOR_EXPORT QuorCode quor_journal_jobs(QuorJournal* journal, QuorJobFunction function,
                                       void* context);

/** Removes a job. A later job with this name counts as new and is printed, even if the removed job
 * is on paper already. Returns QUOR_NONE if there is no job of this name, QUOR_FAILED if a process
 * is printing the job, and QUOR_NO_JOURNAL if the file cannot be written. */
QUOR_EXPORT QuorCode quor_journal_forget(QuorJournal* journal, const char* name);

/** Removes the jobs whose last attempt began more than `days` days ago, except jobs that are being
 * printed. Stores in `*count` how many jobs it removed; `count` may be null. Returns
 * QUOR_NO_JOURNAL if the file cannot be written. */
QUOR_EXPORT QuorCode quor_journal_forget_older_than(QuorJournal* journal, uint32_t days,
                                                    uint64_t* count);

/* ---- Named job ------------------------------------------------------------------------------- */

/** A function of the caller. A library function that has to wait for another process calls this
 * function once, on the caller's thread. */
typedef void (*QuorWaiting)(void* context);

/** The name of a job, and how to run it. */
typedef struct QuorNamedJobRequest {
  const char* name;   /**< 1 to 255 bytes of UTF-8 without control characters */
  const char* device; /**< the device text, recorded only for people who read the journal */

  /** Not 0: print the job again although nobody knows whether it is on paper. Set this only after a
   * person has looked at the paper. */
  int32_t again;

  /** How long to wait for another process that is printing the job. 0 means not to wait. */
  uint32_t timeout;

  QuorWaiting waiting; /**< may be null */
  void* context;       /**< passed to `waiting` */
} QuorNamedJobRequest;

/** A named job. While it exists, no process can create another named job with the same name in the
 * same journal. The kernel frees the name when the process ends, even if the process is killed. */
typedef struct QuorNamedJob QuorNamedJob;

/** Claims the name for a job of `size` bytes. If another process has the name, waits until that
 * process frees it, up to the time-out in the request. Nothing is sent or recorded. Returns
 * QUOR_USAGE if the name is invalid or the journal has a job of this name with other data, and
 * QUOR_NO_JOURNAL if the journal cannot be read or locked. */
QUOR_EXPORT QuorCode quor_named_job_create(QuorJournal* journal, const QuorNamedJobRequest* request,
                                           const void* data, size_t size, QuorNamedJob** job);

/** Frees the handle and the name. */
QUOR_EXPORT void quor_named_job_free(QuorNamedJob* job);

/** Returns 1 if the journal already has the answer: the job was printed, nobody knows whether the
 * job is on paper, or another process is still printing it. Returns 0 if the job must be run. */
QUOR_EXPORT int32_t quor_named_job_is_answered(QuorNamedJob* job);

/** Runs `print_job` with the data. The beginning of the job is recorded on disk before the first
 * byte is sent; the outcome is recorded before this function returns. If the journal already gives
 * an answer, this answer is the result, and the port is not used. Afterwards the functions of
 * `print_job` return the result, even if it is the journal's answer. May be called once, with a
 * print job that has not run; otherwise this function returns QUOR_USAGE. Returns QUOR_NO_JOURNAL
 * if the beginning could not be recorded; in this case nothing of the job was sent, and this
 * function has closed the port. All other codes are those of quor_print_job_run. */
QUOR_EXPORT QuorCode quor_named_job_run(QuorNamedJob* job, QuorPrintJob* print_job);

/** Records that the job was not sent; `reason` says why, for example "the printer cannot be
 * reached". Call this function instead of quor_named_job_run. Returns QUOR_USAGE if the journal
 * gives an answer or the job was run. */
QUOR_EXPORT QuorCode quor_named_job_refuse(QuorNamedJob* job, const char* reason);

/** Returns the number of the attempt that decides the outcome. The job's first attempt has the
 * number 1; 0 means that there was no attempt. */
QUOR_EXPORT int64_t quor_named_job_attempt(QuorNamedJob* job);

/** Returns 1 if the job was printed by an earlier call; quor_named_job_run then sends nothing. */
QUOR_EXPORT int32_t quor_named_job_is_repeated(QuorNamedJob* job);

/** Copies the reason why the outcome could not be recorded, for a person to read. Returns QUOR_NONE
 * if the outcome was recorded. The outcome is correct even if it was not recorded, but in this case
 * the next call with the same job name will answer that the outcome is unknown. */
QUOR_EXPORT QuorCode quor_named_job_not_recorded(QuorNamedJob* job, char* text, size_t capacity,
                                                 size_t* length);

/* ---- Turns ----------------------------------------------------------------------------------- */

/** A turn: the right to use a printer. On one machine only one job at a time has the turn of a
 * printer. A job that does not ask for a turn is not stopped. */
typedef struct QuorTurn QuorTurn;

/** Takes the turn of the printer with this device text. If another job has the turn, waits up to
 * `timeout` until the turn is free. The turn ends when quor_turn_free is called or the process
 * ends. For a printer that no other process can use, such as "virtual:", stores null in `*turn` and
 * returns QUOR_NONE. Returns QUOR_FAILED if the turn is not free by then, QUOR_USAGE if `device` is
 * not a device text, and QUOR_UNEXPECTED if the lock file cannot be used. `waiting` may be null. */
QUOR_EXPORT QuorCode quor_turn_take(const char* device, uint32_t timeout, QuorWaiting waiting,
                                    void* context, QuorTurn** turn);

/** Ends the turn, so that the next job can take it. */
QUOR_EXPORT void quor_turn_free(QuorTurn* turn);

#ifdef __cplusplus
}
#endif

#endif
