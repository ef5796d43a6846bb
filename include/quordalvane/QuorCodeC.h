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

/** The result of a call: one of the codes below. */
typedef int32_t QuorCode;

/** The codes that functions return. */
enum {
  QUOR_OK = 0,              /**< done */
  QUOR_NONE = 1,            /**< done, but there is no value to return; nothing is copied */
  QUOR_FAILED = -1,         /**< the operation was tried and failed */
  QUOR_PORT_EXCEPTION = -2, /**< the operation gave up: a write failed or the link is lost */
  QUOR_UNREADABLE = -3,     /**< the printer's answer does not have the required form */
  QUOR_STOPPED = -4,        /**< the transfer observer stopped the operation */
  QUOR_USAGE = -5,          /**< an argument or the call itself is not allowed; nothing was done */
  QUOR_BUFFER_TOO_SMALL = -6, /**< the buffer is too small; `*length` is the size that is needed */
  QUOR_NO_MEMORY = -7,        /**< memory ran out */
  QUOR_UNEXPECTED = -8,       /**< the system, or a function passed by the caller, failed */
  QUOR_NOT_READY = -9,        /**< the printer is off line, so the query was not sent */
  QUOR_NO_JOURNAL = -10       /**< the journal of jobs cannot be used; see QuorJournalC.h */
};

/** Returns the error text of the calling thread's last failed call, for a person to read; "" if no
 * call has failed. Never returns null. The library owns the text, which is valid until that thread
 * calls the library again. */
QUOR_EXPORT const char* quor_last_error(void);

/** Returns the version of the library, for example "0.1.0". The library owns the text, which is
 * always valid. */
QUOR_EXPORT const char* quor_version(void);

#ifdef __cplusplus
}
#endif

#endif
