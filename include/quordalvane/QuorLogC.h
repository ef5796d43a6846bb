#ifndef QUORDALVANE_QUORLOGC_H
#define QUORDALVANE_QUORLOGC_H

#include <quordalvane/QuorCodeC.h>
#include <stddef.h>

/** @file
 * The log of the library; a part of QuorIOPortC.h.
 */

#ifdef __cplusplus
extern "C" {
#endif

/** Whether records are made at all; off at first. Records that were handed over before are still
 * delivered.
 * @{ */
QUOR_EXPORT int32_t quor_log_is_logging(void);
QUOR_EXPORT void quor_log_set_logging(int32_t on);
/** @} */

/** Which levels, 0 to 63, are wanted: 0 alone at first, and exactly the `count` given afterwards.
 * With a `count` of 0 no level is wanted, and `levels` may be null. QUOR_USAGE, and nothing
 * changes, for another level.
 * @{ */
QUOR_EXPORT int32_t quor_log_is_target_level(int32_t level);
QUOR_EXPORT QuorCode quor_log_set_target_levels(const int32_t* levels, size_t count);
/** @} */

/** One diagnostic record. Its texts are the library's, end with the call that shows them, and are
 * printable UTF-8. */
typedef struct QuorLogRecord {
  int64_t time;   /**< nanoseconds since the epoch */
  int32_t thread; /**< the system's id of the thread that logged */

  /** 0 API start, 1 its end, 2 method start, 3 its end, 4 write, 5 read, 6 process, 7 error. */
  int32_t type;

  int32_t level;       /**< that it was logged with */
  int64_t line;        /**< of the statement that logged, in `file` */
  const char* file;    /**< the name of its source file */
  const char* method;  /**< the function that it is in */
  const char* object;  /**< the address of the object that logged */
  const char* message; /**< the text */
} QuorLogRecord;

/** Receives one record, with the context that the function was added with. */
typedef void (*QuorLogFunction)(void* context, const QuorLogRecord* record);

/** A destination of records, until it is removed. */
typedef struct QuorLogSink QuorLogSink;

/** Gives records to a function of the caller's, on the library's writer thread, never two at once.
 * It may take its time, since no thread that logs waits for it, and may itself log. `context` must
 * live until the sink was removed with QUOR_OK. */
QUOR_EXPORT QuorCode quor_log_add_function(QuorLogFunction function, void* context,
                                           QuorLogSink** sink);

/** Appends records to a file, one JSON object a line. A file that would grow beyond `maximum_bytes`
 * (0: no limit) makes room: FILE becomes FILE.1, and so on, `kept_files` of them. QUOR_UNEXPECTED
 * when it cannot be opened. */
QUOR_EXPORT QuorCode quor_log_add_file(const char* path, uint64_t maximum_bytes,
                                       uint32_t kept_files, QuorLogSink** sink);

/** Writes records to standard error, one readable line each. */
QUOR_EXPORT QuorCode quor_log_add_standard_error(QuorLogSink** sink);

/** Removes the sink, after it has received the records logged before, and frees it, whatever the
 * code. QUOR_FAILED if it was still at work after 2 s, or is itself the caller: then it may be
 * called until quor_log_flush has returned QUOR_OK. */
QUOR_EXPORT QuorCode quor_log_remove_sink(QuorLogSink* sink);

/** Waits until the sinks have received every record so far; QUOR_FAILED if that takes longer than
 * `timeout`, and at once when a sink calls it and something is left. 0 asks without waiting. */
QUOR_EXPORT QuorCode quor_log_flush(uint32_t timeout);

/** How many records may wait for the sinks, 8192 at first; a record that finds no room is dropped
 * and counted. QUOR_USAGE for 0 and for more than 1048576. */
QUOR_EXPORT QuorCode quor_log_set_queue_capacity(size_t records);

/** The counts of the logger since the process began. */
typedef struct QuorLogStatistics {
  uint64_t handed_over; /**< records that were given to the logger */
  uint64_t dropped;     /**< those of them that found no room or no memory */
} QuorLogStatistics;

/** Stores the counts in `*statistics`; they are not reset. */
QUOR_EXPORT QuorCode quor_log_statistics(QuorLogStatistics* statistics);

#ifdef __cplusplus
}
#endif

#endif
