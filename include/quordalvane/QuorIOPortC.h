#ifndef QUORDALVANE_QUORIOPORTC_H
#define QUORDALVANE_QUORIOPORTC_H

/** @file
 * The library for programs that are not written in C++. No exception crosses this interface.
 *
 * Errors. A function that can fail returns a code: 0 or more when it has done its work, below 0
 * when it has not; quor_last_error then says why. A pointer must not be null unless its function
 * says so: to a null one, functions that return a code answer QUOR_USAGE, and the others 0.
 *
 * Texts and bytes. The library hands out no memory: it copies into the caller's buffer of
 * `capacity` bytes, and stores in `*length`, which may be null, how many bytes there are. Texts end
 * in a NUL that `length` does not count and `capacity` must have room for. When the buffer is too
 * small, nothing is copied, `*length` is set all the same, and the code is QUOR_BUFFER_TOO_SMALL; a
 * capacity of 0, for which the buffer may be null, thus asks for the length. The library copies its
 * input or uses it during the call alone, except functions and their contexts.
 *
 * Handles. Who creates one frees it; freeing null does nothing.
 *
 * Threads. One thread at a time may use a port; its properties and quor_port_is_connected may be
 * asked and set from any thread at any time. All other functions may be called from any thread
 * unless their text says otherwise.
 *
 * Time-outs are in milliseconds. Those of a port count as whole seconds of the wall clock: n
 * seconds end n to n + 1 seconds later, less than 1000 ms when the clock's second has changed.
 */

#include <quordalvane/QuorCodeC.h>
#include <quordalvane/QuorLogC.h>
#include <quordalvane/QuorPortC.h>
#include <quordalvane/QuorPrintJobC.h>

#endif
