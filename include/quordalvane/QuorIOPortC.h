#ifndef QUORDALVANE_QUORIOPORTC_H
#define QUORDALVANE_QUORIOPORTC_H

/** @file
 * The library for programs that are not written in C++. No exception crosses this interface.
 *
 * Errors. A function that can fail returns a code, which is 0 or more on success and below 0 on
 * failure. After a failure, quor_last_error says why. A pointer must not be null unless the comment
 * of its function allows it. If a pointer is null although this is not allowed, functions that
 * return a code return QUOR_USAGE, and all other functions return 0.
 *
 * Texts and bytes. The library copies its results into a buffer of the caller, of `capacity` bytes,
 * and stores the number of bytes in `*length`; `length` may be null. A text ends with a NUL.
 * `*length` does not count the NUL, but the buffer must have room for it. If the buffer is too
 * small, nothing is copied, `*length` is still set, and the code is QUOR_BUFFER_TOO_SMALL. To ask
 * for the length alone, pass a capacity of 0; the buffer may then be null. After a call the library
 * keeps no pointer that the caller passed, except pointers to functions and to their contexts.
 *
 * Handles. The caller must free each handle that it has created. Freeing null has no effect.
 *
 * Threads. Only one thread at a time may use a port. Only the properties of the port and
 * quor_port_is_connected may be used by any thread at any time. Any thread may call the other
 * functions, unless their comments say otherwise.
 *
 * Time-outs are in milliseconds. The time-outs of a port are rounded down to whole seconds of the
 * wall clock: a time-out of n seconds ends after n to n + 1 seconds, and a time-out below 1000 ms
 * ends when the next second of the clock begins.
 */

#include <quordalvane/QuorCodeC.h>
#include <quordalvane/QuorLogC.h>
#include <quordalvane/QuorPortC.h>
#include <quordalvane/QuorPrintJobC.h>

#endif
