#ifndef QUORDALVANE_QUORPORTC_H
#define QUORDALVANE_QUORPORTC_H

#include <quordalvane/QuorCodeC.h>
#include <quordalvane/QuorIOPort.h>
#include <stddef.h>

/** @file
 * Devices and ports; a part of QuorIOPortC.h.
 */

#ifdef __cplusplus
extern "C" {
#endif

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
 * port's own thread, which runs until quor_port_close. QUOR_FAILED if quor_connect_devices was
 * not called before or there can be no thread; `*port` is then null. */
QUOR_EXPORT QuorCode quor_port_create(const char* port_name, const char* port_settings,
                                      uint32_t timeout, int32_t emulation, QuorPort** port);

/** Gives the handle back; not inside of the port's own observer functions. Close the port before,
 * also one that was created on the main thread and never opened: freeing does not end its thread,
 * and the thread keeps the port. */
QUOR_EXPORT void quor_port_free(QuorPort* port);

/** Chooses the accessory that the port name designates and opens a session on it. Takes 0.1 s and
 * the link's own connect time. QUOR_FAILED if the port name is shorter than its prefix of three
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
 * it took, which may be fewer, and 0. QUOR_FAILED if the link is lost or reports an error: the
 * number of bytes sent is then unknown, and `*written` is 0. */
QUOR_EXPORT QuorCode quor_port_write(QuorPort* port, const void* data, size_t size,
                                     size_t* written);

/** Takes what the link holds, at most `capacity` bytes, and waits at most 0.1 s for the first.
 * `*length` is how many there were, and 0 when there were none. QUOR_FAILED if the link is lost
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

/** Asks the printer for its status; `level` is only logged. QUOR_FAILED if there was no usable
 * answer: after about 3 s in line mode, the record then untouched; within the time-out in ESC/POS,
 * the record then perhaps partly written. QUOR_PORT_EXCEPTION if the link is lost. Bytes that
 * wait in the input are thrown away. */
QUOR_EXPORT QuorCode quor_port_get_parsed_status(QuorPort* port, QuorPrinterStatus_2* status,
                                                 uint32_t level);

/** Stores 1 in `*online` if the printer is ready to print and 0 if it is not. On failure, as
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
 * (the time-out), or for paper to be taken (the hold-print time-out). QUOR_PORT_EXCEPTION if the
 * link is lost. */
QUOR_EXPORT QuorCode quor_port_begin_checked_block(QuorPort* port, QuorPrinterStatus_2* status,
                                                   uint32_t level, int64_t* result_code);

/** Marks the end of the job and waits, up to the end-of-block time-out, until the printer has
 * worked through everything, or is off line: `status` shows which, and the caller judges it. In
 * ESC/POS QUOR_OK alone does not prove that the job was printed; a print job knows. QUOR_FAILED
 * when a write failed or the time passed, QUOR_PORT_EXCEPTION if the link is lost. */
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
 * quor_port_dip_switch_information returns. QUOR_FAILED if one gave no answer within the
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
 * QUOR_FAILED if it did not answer or answered an error, QUOR_UNREADABLE on a cut answer. */
QUOR_EXPORT QuorCode quor_port_enter_at_mode(QuorPort* port);

/** Waits up to `timeout`, at least a second, for the module's result, and copies the text: its OK
 * or ERROR line, or, with `setting_title`, which may be null, the title and the `setting_length`
 * characters after it, 0 meaning all of them. QUOR_FAILED if none arrived, QUOR_UNREADABLE if
 * the title and so many characters are not in it. A text that the buffer cannot hold is lost. */
QUOR_EXPORT QuorCode quor_port_get_printer_response(QuorPort* port, const char* setting_title,
                                                    int32_t setting_length, int32_t timeout,
                                                    char* text, size_t capacity, size_t* length);

/** Asks the module to drop the link and waits up to the time-out until it is lost; the port remains
 * open. QUOR_FAILED if it is not lost. The second is for a module that is in command mode
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

#ifdef __cplusplus
}
#endif

#endif
