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

/** Return and set whether logging is on. Logging is off initially. After logging is switched off,
 * records that are already in the queue are still delivered.
 * @{ */
QUOR_EXPORT int32_t quor_log_is_logging(void);
QUOR_EXPORT void quor_log_set_logging(int32_t on);
/** @} */

/** Return and set which levels, from 0 to 63, are logged; initially only level 0. After a call of
 * the setter, only the `count` levels in `levels` are logged. With a `count` of 0 no level is
 * logged, and `levels` may be null. If a level is outside 0 to 63, the setter changes nothing and
 * returns QUOR_USAGE.
 * @{ */
QUOR_EXPORT int32_t quor_log_is_target_level(int32_t level);
QUOR_EXPORT QuorCode quor_log_set_target_levels(const int32_t* levels, size_t count);
/** @} */

/** One log record. The library owns its texts, which are printable UTF-8 and valid only during the
 * call that receives the record. */
typedef struct QuorLogRecord {
  int64_t time;   /**< nanoseconds since the epoch */
  int32_t thread; /**< the system's ID of the thread that logged */

  /** The kind: 0 API start, 1 API end, 2 method start, 3 method end, 4 write, 5 read, 6 process, 7
   * error. */
  int32_t type;

  int32_t level;       /**< the level of the log statement */
  int64_t line;        /**< the line of the log statement in `file` */
  const char* file;    /**< the source file of the log statement */
  const char* method;  /**< the method that contains the log statement */
  const char* object;  /**< the address of the object that logged */
  const char* message; /**< the text of the record */
} QuorLogRecord;

/** Receives one record. `context` is the pointer that was passed when the function was added. */
typedef void (*QuorLogFunction)(void* context, const QuorLogRecord* record);

/** A destination of log records. */
typedef struct QuorLogSink QuorLogSink;

/** Passes every record to a function of the caller. The library's writer thread calls the function,
 * for one record at a time. The function may take as long as it needs, because no thread that logs
 * waits for it. The function may itself log. `context` must exist until quor_log_remove_sink has
 * returned QUOR_OK for this sink. */
QUOR_EXPORT QuorCode quor_log_add_function(QuorLogFunction function, void* context,
                                           QuorLogSink** sink);

/** Appends every record to a file, as one line with a JSON object. If a record would make the file
 * longer than `maximum_bytes` (0 means no limit), a new file is begun: FILE is renamed to FILE.1,
 * FILE.1 to FILE.2, and so on; at most `kept_files` old files are kept. Returns QUOR_UNEXPECTED if
 * the file cannot be opened. */
QUOR_EXPORT QuorCode quor_log_add_file(const char* path, uint64_t maximum_bytes,
                                       uint32_t kept_files, QuorLogSink** sink);

/** Writes every record to standard error, as one readable line. */
QUOR_EXPORT QuorCode quor_log_add_standard_error(QuorLogSink** sink);

/** Waits until the sink has received all earlier records, and removes the sink. Always frees the
 * handle. Returns QUOR_FAILED if the sink is still busy after 2 s, or if the sink itself makes this
 * call. After QUOR_FAILED the function of the sink may still be called, until quor_log_flush has
 * returned QUOR_OK. */
QUOR_EXPORT QuorCode quor_log_remove_sink(QuorLogSink* sink);

/** Waits until the sinks have received every record logged so far. Returns QUOR_FAILED if this
 * takes longer than `timeout`, or at once if a sink makes this call while records are in the queue.
 * With a time-out of 0 this function does not wait. */
QUOR_EXPORT QuorCode quor_log_flush(uint32_t timeout);

/** Sets how many records may wait for the sinks, initially 8192. If the queue is full, new records
 * are dropped and counted. Returns QUOR_USAGE if `records` is 0 or more than 1048576. */
QUOR_EXPORT QuorCode quor_log_set_queue_capacity(size_t records);

/** Numbers that the logger has counted since the process began. */
typedef struct QuorLogStatistics {
  uint64_t handed_over; /**< number of records passed to the logger */
  uint64_t dropped; /**< number of these records that were dropped: the queue was full or memory was
                       short */
} QuorLogStatistics;

/** Stores the current counts in `*statistics` and does not reset them. */
QUOR_EXPORT QuorCode quor_log_statistics(QuorLogStatistics* statistics);

#ifdef __cplusplus
}
#endif

#endif
