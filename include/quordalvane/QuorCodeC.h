#ifndef QUORDALVANE_QUORCODEC_H
#define QUORDALVANE_QUORCODEC_H

#include <quordalvane/QuorExport.h>
#include <stdint.h>

/** @file
 * The codes that functions of the library return.
 */

#ifdef __cplusplus
extern "C" {
#endif

/** How a call ended: one of the codes below. */
typedef int32_t QuorCode;

/** The codes that functions return. */
enum {
  QUOR_OK = 0,                /**< done */
  QUOR_NONE = 1,              /**< done, but there is nothing to hand out; nothing is copied */
  QUOR_FAILED = -1,           /**< tried, and it did not succeed */
  QUOR_PORT_EXCEPTION = -2,   /**< the port gave up: a failed write or a lost link */
  QUOR_UNREADABLE = -3,       /**< the printer's answer does not have the form that it must have */
  QUOR_STOPPED = -4,          /**< the transfer observer stopped the operation */
  QUOR_USAGE = -5,            /**< called with something that is not allowed; nothing was done */
  QUOR_BUFFER_TOO_SMALL = -6, /**< `*length` is the number of bytes that there are */
  QUOR_NO_MEMORY = -7,        /**< memory ran out */
  QUOR_UNEXPECTED = -8,       /**< the system or a function of the caller's failed */
  QUOR_NOT_READY = -9,        /**< the printer is off line, and was not asked */
  QUOR_NO_JOURNAL = -10       /**< a journal of jobs cannot be kept, see QuorJournalC.h */
};

/** Why the calling thread's latest failed call failed, for a person; "" before the first. Never
 * null; the library's, and valid until that thread's next call. */
QUOR_EXPORT const char* quor_last_error(void);

/** The library's version, "0.1.0" for example; the library's, for ever. */
QUOR_EXPORT const char* quor_version(void);

#ifdef __cplusplus
}
#endif

#endif
