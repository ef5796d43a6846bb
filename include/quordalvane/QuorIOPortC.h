#ifndef QUORDALVANE_QUORIOPORTC_H
#define QUORDALVANE_QUORIOPORTC_H

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorIOPort.h>
#include <stddef.h>

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

/* ---- Devices --------------------------------------------------------------------------------- */

/** Presents the devices of these `count` texts, in their order, as the accessories of this process;
 * ports that are created from then on find them, earlier ones keep theirs. A text is
 * SCHEME:PLACE[,key=value...]: "virtual:", "tcp:192.0.2.10:9100", "unix:PATH", "serial:PATH". 0
 * texts are no devices, and `specs` may then be null. Nothing is connected before a port is opened.
 * QUOR_USAGE for a text that is no device; the devices do not change then. */
QUOR_EXPORT QuorCode quor_connect_devices(const char* const* specs, size_t count);

/* ---- Port: creation and connection ----------------------------------------------------------- */

/** The command system that a port speaks with its printer. */
enum {
  QUOR_EMULATION_UNKNOWN = 0, /**< not known: every query of the status fails */
  QUOR_EMULATION_LINE = 1,    /**< the maker's line mode */
  QUOR_EMULATION_ESCPOS = 2   /**< the common command set of receipt printers */
};

/** One connection to one printer. */
typedef struct QuorPort QuorPort;

/** Creates a port; nothing is opened. `port_name` is "BT:", or null, for the first printer that is
 * attached, or "BT:" followed by a name, serial number or Bluetooth address. It is UTF-8; its first
 * three characters count as the prefix, even if they are not "BT:". `port_settings`, which may be
 * null, may hold a d and 0 to 255: the data time-out in seconds. `timeout` is the input/output
 * time-out; 0 ends a wait when the clock's second changes. On the main thread it also starts the
 * port's own thread, which runs until quor_port_close. QUOR_FAILED when quor_connect_devices was
 * not called before or there can be no thread; `*port` is then null. */
QUOR_EXPORT QuorCode quor_port_create(const char* port_name, const char* port_settings,
                                      uint32_t timeout, int32_t emulation, QuorPort** port);

/** Gives the handle back; not inside of the port's own observer functions. Close the port before,
 * also one that was created on the main thread and never opened: freeing does not end its thread,
 * and the thread keeps the port. */
QUOR_EXPORT void quor_port_free(QuorPort* port);

/** Chooses the accessory that the port name designates and opens a session on it. Takes 0.1 s and
 * the link's own connect time. QUOR_FAILED when the port name is shorter than its prefix of three
 * characters, when no accessory matches, or when the one that does cannot be reached. */
QUOR_EXPORT QuorCode quor_port_open(QuorPort* port);

/** Ends the session and, on the main thread, the port's thread. Pauses 0.1 s before if the system
 * version is 10.0 or more; it is the kernel's, which is lower today. Waits for the printer to take
 * the bytes that are under way: at most two seconds over a socket, and not at all if there are
 * none. Harmless on a port that is not open. */
QUOR_EXPORT QuorCode quor_port_close(QuorPort* port);

/** 1 while the chosen accessory is attached, even if an open found it and got no session; 0 before
 * quor_port_open and after quor_port_close. */
QUOR_EXPORT int32_t quor_port_is_connected(QuorPort* port);

/* ---- Port: bytes ----------------------------------------------------------------------------- */

/** Offers `size` bytes to the link and waits at most 0.1 s once for space. `*written` is how many
 * it took, which may be fewer, and 0. QUOR_FAILED when the link is lost or reports an error: the
 * number of bytes sent is then unknown, and `*written` is 0. */
QUOR_EXPORT QuorCode quor_port_write(QuorPort* port, const void* data, size_t size,
                                     size_t* written);

/** Takes what the link holds, at most `capacity` bytes, and waits at most 0.1 s for the first.
 * `*length` is how many there were, and 0 when there were none. QUOR_FAILED when the link is lost
 * or reports an error; bytes taken before are then dropped. */
QUOR_EXPORT QuorCode quor_port_read(QuorPort* port, void* buffer, size_t capacity, size_t* length);

/** Sends a whole short command in as many attempts, 50 ms apart, as fit into the time-out, and
 * stores the count. QUOR_FAILED on a lost link or the time-out; part of it may be out, and
 * `*written` is 0. For commands that a link takes at once: after an attempt that was taken in part,
 * bytes may be left out or sent again. Print data goes through a print job. */
QUOR_EXPORT QuorCode quor_port_write_with_retry(QuorPort* port, const void* command, size_t size,
                                                size_t* written);

/** Functions that see every byte that passes, on the thread that moves it: `bytes_written` gets the
 * number that the link took, which may be 0, and `bytes_read` the bytes that a read is about to
 * return, which may be empty. A function that returns other than 0 stops the operation that moves
 * the bytes, with QUOR_STOPPED. `context` is the one that was set with them. Neither may free the
 * port, nor set its observers.
 * @{ */
typedef int32_t (*QuorBytesWritten)(void* context, size_t count);
typedef int32_t (*QuorBytesRead)(void* context, const uint8_t* bytes, size_t count);
/** @} */

/** Sets the observers of a port; null removes one. `context` must outlive their use. A print job
 * replaces them while it runs, and removes them at its end. */
QUOR_EXPORT QuorCode quor_port_set_transfer_observer(QuorPort* port, QuorBytesWritten bytes_written,
                                                     QuorBytesRead bytes_read, void* context);

/* ---- Port: status ---------------------------------------------------------------------------- */

/** Asks the printer for its status; `level` is only logged. QUOR_FAILED when there was no usable
 * answer: after about 3 s in line mode, the record then untouched; within the time-out in ESC/POS,
 * the record then perhaps partly written. QUOR_PORT_EXCEPTION when the link is lost. Bytes that
 * wait in the input are thrown away. */
QUOR_EXPORT QuorCode quor_port_get_parsed_status(QuorPort* port, QuorPrinterStatus_2* status,
                                                 uint32_t level);

/** Stores 1 in `*online` when the printer is ready to print and 0 when it is not. On failure, as
 * above, `*online` is 0. */
QUOR_EXPORT QuorCode quor_port_get_online_status(QuorPort* port, int32_t* online);

/* ---- Port: checked block --------------------------------------------------------------------- */

/** How the beginning of a block ended. The port itself gives success, failed and paper present; the
 * other two are for layers above it. */
enum {
  QUOR_RESULT_SUCCESS = 0,        /**< the block has begun */
  QUOR_RESULT_FAILED = -1,        /**< an exchange failed, or the printer is off line */
  QUOR_RESULT_IN_PROCESS = -2,    /**< for a layer above: not finished yet */
  QUOR_RESULT_PAPER_PRESENT = -3, /**< the paper in the exit was not taken in time */
  QUOR_RESULT_IN_USE = -100       /**< for a layer above: another one uses the printer */
};

/** Prepares the printer for a job whose printing quor_port_end_checked_block will verify. `status`
 * receives every status acquired. QUOR_OK says that the exchange worked; `*result_code` is then
 * success, or failed if a line-mode printer was off line and nothing was sent. QUOR_FAILED, with
 * failed or paper present in `*result_code`, when the exchange failed, or a wait: for the counter
 * (the time-out), or for paper to be taken (the hold-print time-out). QUOR_PORT_EXCEPTION when the
 * link is lost. */
QUOR_EXPORT QuorCode quor_port_begin_checked_block(QuorPort* port, QuorPrinterStatus_2* status,
                                                   uint32_t level, int64_t* result_code);

/** Marks the end of the job and waits, up to the end-of-block time-out, until the printer has
 * worked through everything, or is off line: `status` shows which, and the caller judges it. In
 * ESC/POS QUOR_OK alone does not prove that the job was printed; a print job knows. QUOR_FAILED
 * when a write failed or the time passed, QUOR_PORT_EXCEPTION when the link is lost. */
QUOR_EXPORT QuorCode quor_port_end_checked_block(QuorPort* port, QuorPrinterStatus_2* status,
                                                 uint32_t level);

/** Makes the printer drop the data that it has received and not printed. QUOR_FAILED unless the
 * command was written whole. */
QUOR_EXPORT QuorCode quor_port_start_data_cancel(QuorPort* port);

/* ---- Port: facts about the printer ----------------------------------------------------------- */

/** Ask for the firmware text, which quor_port_firmware_information then returns; a failure leaves
 * the earlier one. The first looks at the status before and fails on a printer that is off line;
 * the others are the queries of line mode and of ESC/POS alone. QUOR_FAILED without an answer
 * within the time-out, QUOR_UNREADABLE on an ESC/POS reply of one byte.
 * @{ */
QUOR_EXPORT QuorCode quor_port_retrieve_firmware_information(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_retrieve_firmware_information2(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_retrieve_escpos_firmware_information(QuorPort* port);
/** @} */

/** Asks for both DIP-switch banks and appends them to the banks that
 * quor_port_dip_switch_information returns. QUOR_FAILED when one gave no answer within the
 * time-out; if bank 2 fails, bank 1 remains appended. */
QUOR_EXPORT QuorCode quor_port_retrieve_dip_switch_information(QuorPort* port);

/** Asks for the two setting bytes of `bank`, 1 or 2, and appends them to nothing. QUOR_FAILED
 * without an answer of two bytes within the time-out; `settings` is then untouched. */
QUOR_EXPORT QuorCode quor_port_retrieve_dip_switch_bank(QuorPort* port, uint8_t bank,
                                                        uint8_t settings[2]);

/** Stores the button-security time-out: 0 when it is off, otherwise the printer's 5, 10 or 20
 * seconds plus the creation time-out, modulo 2^32. QUOR_FAILED without an answer within the
 * time-out. */
QUOR_EXPORT QuorCode quor_port_retrieve_button_security_timeout(QuorPort* port,
                                                                uint32_t* milliseconds);

/* ---- Port: the printer's Bluetooth module ---------------------------------------------------- */

/** Puts the module into command mode and proves it; 2.5 s, and up to 11 s for the answer.
 * QUOR_FAILED when it did not answer or answered an error, QUOR_UNREADABLE on a cut answer. */
QUOR_EXPORT QuorCode quor_port_enter_at_mode(QuorPort* port);

/** Waits up to `timeout`, at least a second, for the module's result, and copies the text: its OK
 * or ERROR line, or, with `setting_title`, which may be null, the title and the `setting_length`
 * characters after it, 0 meaning all of them. QUOR_FAILED when none arrived, QUOR_UNREADABLE when
 * the title and so many characters are not in it. A text that the buffer cannot hold is lost. */
QUOR_EXPORT QuorCode quor_port_get_printer_response(QuorPort* port, const char* setting_title,
                                                    int32_t setting_length, int32_t timeout,
                                                    char* text, size_t capacity, size_t* length);

/** Asks the module to drop the link and waits up to the time-out until it is lost; the port remains
 * open. QUOR_FAILED when it is not lost. The second is for a module that is in command mode
 * already.
 * @{ */
QUOR_EXPORT QuorCode quor_port_disconnect(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_disconnect_bluetooth_connection(QuorPort* port);
/** @} */

/* ---- Port: properties ------------------------------------------------------------------------ */

/** The values that the port was created with; the time-out in milliseconds.
 * @{ */
QUOR_EXPORT int32_t quor_port_emulation(QuorPort* port);
QUOR_EXPORT uint32_t quor_port_timeout(QuorPort* port);
/** @} */

/** The limit of quor_port_end_checked_block; the creation time-out until it is set.
 * @{ */
QUOR_EXPORT uint32_t quor_port_end_checked_block_timeout(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_end_checked_block_timeout(QuorPort* port, uint32_t milliseconds);
/** @} */

/** How long quor_port_begin_checked_block waits in line mode for paper to be taken; 0 until set.
 * @{ */
QUOR_EXPORT uint32_t quor_port_hold_print_timeout(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_hold_print_timeout(QuorPort* port, uint32_t milliseconds);
/** @} */

/** After how many seconds without data the printer drops an unfinished job: 0 is never, and a
 * negative value, as at first, does not change the printer's own setting. Of other values the low
 * byte is sent.
 * @{ */
QUOR_EXPORT int64_t quor_port_data_timeout_seconds(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_data_timeout_seconds(QuorPort* port, int64_t seconds);
/** @} */

/** The last firmware text that was obtained; QUOR_NONE before the first. */
QUOR_EXPORT QuorCode quor_port_firmware_information(QuorPort* port, char* text, size_t capacity,
                                                    size_t* length);

/** Every bank read so far, two bytes each, oldest first. */
QUOR_EXPORT QuorCode quor_port_dip_switch_information(QuorPort* port, uint8_t* banks,
                                                      size_t capacity, size_t* length);

/** The name, the serial number and the connection identifier of the chosen accessory; QUOR_NONE and
 * 0 while the port is closed. Setting null removes a text.
 * @{ */
QUOR_EXPORT QuorCode quor_port_name(QuorPort* port, char* text, size_t capacity, size_t* length);
QUOR_EXPORT QuorCode quor_port_set_name(QuorPort* port, const char* name);
QUOR_EXPORT QuorCode quor_port_serial_number(QuorPort* port, char* text, size_t capacity,
                                             size_t* length);
QUOR_EXPORT QuorCode quor_port_set_serial_number(QuorPort* port, const char* serial_number);
QUOR_EXPORT uint64_t quor_port_connection_id(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_connection_id(QuorPort* port, uint64_t connection_id);
/** @} */

/** 1 once an accessory of the model "XQ700" was opened; never 0 again. */
QUOR_EXPORT int32_t quor_port_is_brondel(QuorPort* port);

/** 1 if the port has a thread of its own; a port that was created off the main thread has none. */
QUOR_EXPORT int32_t quor_port_has_thread71(QuorPort* port);

/** The result of the last open, 1 or 0; QUOR_NONE before the first. A negative value removes it.
 * @{ */
QUOR_EXPORT QuorCode quor_port_result71(QuorPort* port, int32_t* result);
QUOR_EXPORT QuorCode quor_port_set_result71(QuorPort* port, int32_t result);
/** @} */

/** The pause between the attempts of the retrying writer, and the writer's wait for space and the
 * pause before a close; in seconds.
 * @{ */
QUOR_EXPORT float quor_port_sec_interval1(QuorPort* port);
QUOR_EXPORT float quor_port_sec_interval2(QuorPort* port);
/** @} */

/* ---- Questions with judged answers ----------------------------------------------------------- */

/** Ask a printer over an open port, and judge the answers. The queries of the port itself, above,
 * may take the rest of one answer, or the bytes of another device, for the next answer; these do
 * not. Nothing is printed.
 *
 * QUOR_FAILED when there was no answer or the link did not take the question, QUOR_UNREADABLE when
 * something answered and not as a printer does, QUOR_PORT_EXCEPTION when the link is lost,
 * QUOR_USAGE when the emulation is unknown. Results are then untouched.
 *
 * Each ends within twice the time-out of the port and five seconds, even on a printer that never
 * stops sending; quor_printer_disconnect ends ten seconds later. Bytes that wait in the input are
 * thrown away. A question removes the observers of the port. For the thread that uses the port.
 */

/** The printer's status; `level` is only logged. */
QUOR_EXPORT QuorCode quor_printer_status(QuorPort* port, QuorPrinterStatus_2* status,
                                         uint32_t level);

/** Stores 1 in `*online` if the printer is ready to print, and 0 if it is not. */
QUOR_EXPORT QuorCode quor_printer_is_online(QuorPort* port, int32_t* online);

/** Copies the firmware text, as it was received. QUOR_NOT_READY from a printer that is off line. */
QUOR_EXPORT QuorCode quor_printer_firmware(QuorPort* port, char* text, size_t capacity,
                                           size_t* length);

/** Stores the two setting bytes of bank 1 and then those of bank 2. */
QUOR_EXPORT QuorCode quor_printer_dip_switches(QuorPort* port, uint8_t settings[4]);

/** Stores the button-security time-out in milliseconds: 0 if it is off, otherwise the printer's
 * time and the time-out of the port. */
QUOR_EXPORT QuorCode quor_printer_button_security_timeout(QuorPort* port, uint32_t* milliseconds);

/** Stores the strongest proof of a job that the printer gives, one of the numbers below, none if it
 * gives none. A printer that is off line may keep its answers in ESC/POS, and then seems to give
 * none. Its count of marks begins anew: do not ask while another program prints on it. */
QUOR_EXPORT QuorCode quor_printer_proof(QuorPort* port, int32_t* proof);

/** Makes the printer drop the data that it has not printed yet. There is no answer: returns after
 * the link has taken the command. */
QUOR_EXPORT QuorCode quor_printer_drop_all(QuorPort* port);

/** Makes the printer's Bluetooth module drop the link; the port remains open. */
QUOR_EXPORT QuorCode quor_printer_disconnect(QuorPort* port);

/* ---- Print job ------------------------------------------------------------------------------- */

/** The outcome of a job. */
enum {
  QUOR_PRINTED = 0, /**< the printer confirmed that it has printed all of it */
  QUOR_UNCONFIRMED =
      1,           /**< bytes were sent, and nothing proves that they were printed or were not */
  QUOR_REFUSED = 2 /**< no byte of the job was sent: sending it again is safe */
};

/** Why a job was not printed, as far as a program must distinguish the cases. */
enum {
  QUOR_OBSTACLE_NONE = 0,              /**< printed, or not run to its end */
  QUOR_OBSTACLE_PRINTER_NOT_READY = 1, /**< off line, or paper in its exit */
  QUOR_OBSTACLE_LINK_LOST = 2,         /**< the link ended before the job did */
  QUOR_OBSTACLE_CANCELLED = 3,         /**< quor_print_job_cancel was called */
  QUOR_OBSTACLE_EXCHANGE_FAILED = 4,   /**< no answer, no space for too long, or a failed write */
  QUOR_OBSTACLE_NO_PROOF = 5 /**< all bytes were sent; the sign that they were printed is missing */
};

/** How a printer confirms a job. */
enum {
  QUOR_PROOF_NONE = 0,  /**< not at all: it is not asked, and the job is unconfirmed at best */
  QUOR_PROOF_AUTO = 1,  /**< as proof= of its device says; otherwise it is asked before the job */
  QUOR_PROOF_BLOCK = 2, /**< it counts marks before and after the data */
  QUOR_PROOF_PROCESS_ID = 3, /**< it names four random characters that end the job; ESC/POS alone */
  QUOR_PROOF_IN_ORDER =
      4 /**< it answers a question that ends the job, in its turn; ESC/POS alone */
};

/** One print job over an open port. It is sent once and never again by itself. */
typedef struct QuorPrintJob QuorPrintJob;

/** Called on the thread that runs the job: when its block begins, before its data is sent, after
 * each piece that was sent, when its block ends, and when the reason changes for which the printer
 * has paused, see quor_print_job_waits_for. */
typedef void (*QuorProgress)(void* context, uint64_t bytes_accepted, uint64_t bytes_total);

/** Creates a job, which keeps the port for itself as long as it lives. `proof` says how the printer
 * is to confirm it; QUOR_USAGE for another number. `progress` may be null; `context` must outlive
 * the run. */
QUOR_EXPORT QuorCode quor_print_job_create(QuorPort* port, int32_t proof, QuorProgress progress,
                                           void* context, QuorPrintJob** job);

/** Frees the handle and releases the port; not while the job runs. */
QUOR_EXPORT void quor_print_job_free(QuorPrintJob* job);

/** Prints `size` bytes and returns when their outcome is known, which the functions below return;
 * may be called once, QUOR_USAGE the second time. QUOR_OK says nothing about the outcome. Blocks up
 * to the time-outs of the port. The port remains open, except after a cancel. After a failure of
 * memory or of the system the outcome is unconfirmed and the count unknown. */
QUOR_EXPORT QuorCode quor_print_job_run(QuorPrintJob* job, const void* data, size_t size);

/** Abandons the job: within 0.3 s the printer gets the command to drop the data that it holds, if
 * the link takes that, and the port is closed. Any thread, also before the run; safe in a signal
 * handler. */
QUOR_EXPORT void quor_print_job_cancel(QuorPrintJob* job);

/** The outcome of the job, for the thread that ran it. Before the run it is refused, with no
 * obstacle. The result code is that of the block's beginning, or failed without a block; the total
 * is how many bytes the job has.
 * @{ */
QUOR_EXPORT int32_t quor_print_job_outcome(QuorPrintJob* job);
QUOR_EXPORT int32_t quor_print_job_obstacle(QuorPrintJob* job);
QUOR_EXPORT int64_t quor_print_job_result_code(QuorPrintJob* job);
QUOR_EXPORT uint64_t quor_print_job_bytes_total(QuorPrintJob* job);
/** @} */

/** The proof that was used: none for a printer that gives none, auto while it was not found. */
QUOR_EXPORT int32_t quor_print_job_proof(QuorPrintJob* job);

/** Why a printer that keeps the job has paused, "cover open" for example; "" while it has not. For
 * the progress function, on its thread. */
QUOR_EXPORT QuorCode quor_print_job_waits_for(QuorPrintJob* job, char* text, size_t capacity,
                                              size_t* length);

/** The exact number of bytes of the job that the link took. */
QUOR_EXPORT uint64_t quor_print_job_bytes_accepted(QuorPrintJob* job);

/** The last status that was obtained; QUOR_NONE if none was. Once data of the job has been sent,
 * only a status from after the data counts. */
QUOR_EXPORT QuorCode quor_print_job_status(QuorPrintJob* job, QuorPrinterStatus_2* status);

/** Why the job was not printed, and the next step to take, for a person; "" when it was printed.
 * @{ */
QUOR_EXPORT QuorCode quor_print_job_reason(QuorPrintJob* job, char* text, size_t capacity,
                                           size_t* length);
QUOR_EXPORT QuorCode quor_print_job_advice(QuorPrintJob* job, char* text, size_t capacity,
                                           size_t* length);
/** @} */

/* ---- Logging --------------------------------------------------------------------------------- */

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
 * code. QUOR_FAILED when it was still at work after 2 s, or is itself the caller: then it may be
 * called until quor_log_flush has returned QUOR_OK. */
QUOR_EXPORT QuorCode quor_log_remove_sink(QuorLogSink* sink);

/** Waits until the sinks have received every record so far; QUOR_FAILED when that takes longer than
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
