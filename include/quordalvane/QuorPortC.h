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

/** Makes the `count` devices in `specs` the accessories of this process, in this order. Ports that
 * are created later find these devices; earlier ports keep their accessories. A device text is
 * SCHEME:PLACE[,key=value...], for example "virtual:", "tcp:192.0.2.10:9100", "unix:PATH" or
 * "serial:PATH". With a `count` of 0 there are no devices, and `specs` may be null. Nothing is
 * connected before a port is opened. Returns QUOR_USAGE, and changes nothing, if a text is not a
 * valid device text. */
QUOR_EXPORT QuorCode quor_connect_devices(const char* const* specs, size_t count);

/* ---- Port: creation and connection ----------------------------------------------------------- */

/** The command system that a port speaks with its printer. */
enum {
  QUOR_EMULATION_UNKNOWN = 0, /**< unknown: every query of the status fails */
  QUOR_EMULATION_LINE = 1,    /**< the maker's own command set, called line mode */
  QUOR_EMULATION_ESCPOS = 2   /**< the common command set of receipt printers */
};

/** One connection to one printer. */
typedef struct QuorPort QuorPort;

/** Creates a port and opens nothing. `port_name` selects the printer. "BT:" or null selects the
 * first printer that is attached. "BT:" followed by a name, serial number or Bluetooth address
 * selects the printer with that name, number or address. `port_name` is UTF-8; its first three
 * characters are the prefix, even if they are not "BT:". `port_settings` may be null, or contain
 * the letter d followed by the data time-out, 0 to 255 seconds. `timeout` is the input/output
 * time-out in milliseconds; with 0, a wait ends when the next second of the clock begins. On the
 * main thread the function also starts the port's own thread, which runs until quor_port_close.
 * Returns QUOR_FAILED, with null in `*port`, if quor_connect_devices was not called before or the
 * thread cannot be created. */
QUOR_EXPORT QuorCode quor_port_create(const char* port_name, const char* port_settings,
                                      uint32_t timeout, int32_t emulation, QuorPort** port);

/** Frees the handle. Must not be called in an observer function of the port. Close the port first,
 * even if it was never opened: freeing the handle does not end the port's thread, which keeps the
 * port alive. */
QUOR_EXPORT void quor_port_free(QuorPort* port);

/** Chooses the accessory that matches the port name, and opens a session on this accessory. Takes
 * 0.1 s plus the time that the link needs to connect. Returns QUOR_FAILED if the port name has
 * fewer than three characters, if no accessory matches, or if the chosen accessory cannot be
 * reached. */
QUOR_EXPORT QuorCode quor_port_open(QuorPort* port);

/** Ends the session and, on the main thread, also the port's thread. Pauses 0.1 s first if the
 * version of the system is 10.0 or more; the version is that of the kernel, which is below 10.0
 * today. Waits until the printer has taken the bytes that were written: at most two seconds over a
 * socket, and not at all if the printer has taken them already. May be called on a port that is not
 * open. */
QUOR_EXPORT QuorCode quor_port_close(QuorPort* port);

/** Returns 1 while the chosen accessory is attached, even if quor_port_open could not open a
 * session on it. Returns 0 before quor_port_open and after quor_port_close. */
QUOR_EXPORT int32_t quor_port_is_connected(QuorPort* port);

/* ---- Port: bytes ----------------------------------------------------------------------------- */

/** Offers `size` bytes to the link. If the link has no space, waits once for space, for at most 0.1
 * s. Stores in `*written` how many bytes the link took: 0 to `size`. Returns QUOR_FAILED if the
 * link is lost or reports an error; `*written` is then 0, and the number of bytes sent is
 * unknown. */
QUOR_EXPORT QuorCode quor_port_write(QuorPort* port, const void* data, size_t size,
                                     size_t* written);

/** Takes the bytes that have arrived, at most `capacity`; waits at most 0.1 s for the first byte.
 * Stores in `*length` how many bytes it took, which may be 0. Returns QUOR_FAILED if the link is
 * lost or reports an error; bytes that this call has already taken are then dropped. */
QUOR_EXPORT QuorCode quor_port_read(QuorPort* port, void* buffer, size_t capacity, size_t* length);

/** Sends a whole short command. Tries again every 50 ms until the whole command is sent or the
 * input/output time-out has passed, and stores the number of bytes sent in `*written`. Returns
 * QUOR_FAILED, with 0 in `*written`, if the link is lost or the time-out passes; a part of the
 * command may have been sent before. Use this function only for commands that a link takes at once:
 * if the link takes only a part of a command, bytes may be left out or sent twice. Send print data
 * with a print job. */
QUOR_EXPORT QuorCode quor_port_write_with_retry(QuorPort* port, const void* command, size_t size,
                                                size_t* written);

/** Functions that observe the bytes of a port. The port calls them on the thread that writes or
 * reads the bytes. `bytes_written` receives the number of bytes that the link took, which may be 0.
 * `bytes_read` receives the bytes that a read is about to return; there may be no bytes. If a
 * function does not return 0, the operation of the port ends with QUOR_STOPPED. `context` is the
 * pointer that was set together with the functions. The functions must not free the port or set its
 * observers.
 * @{ */
typedef int32_t (*QuorBytesWritten)(void* context, size_t count);
typedef int32_t (*QuorBytesRead)(void* context, const uint8_t* bytes, size_t count);
/** @} */

/** Sets the observers of a port; null removes an observer. `context` must exist until other
 * observers are set. A print job replaces the observers while it runs; afterwards the port has no
 * observers. */
QUOR_EXPORT QuorCode quor_port_set_transfer_observer(QuorPort* port, QuorBytesWritten bytes_written,
                                                     QuorBytesRead bytes_read, void* context);

/* ---- Port: status ---------------------------------------------------------------------------- */

/** Asks the printer for its status; `level` is only logged. First drops the received bytes that
 * nobody has read. Returns QUOR_FAILED if there was no usable answer. In line mode this failure
 * takes about 3 s, and the record is unchanged. In ESC/POS the failure takes up to the creation
 * time-out, and the record may be partly written. Returns QUOR_PORT_EXCEPTION if the link is
 * lost. */
QUOR_EXPORT QuorCode quor_port_get_parsed_status(QuorPort* port, QuorPrinterStatus_2* status,
                                                 uint32_t level);

/** Asks whether the printer is ready to print, and stores 1 in `*online` if it is, or 0 otherwise.
 * Fails as quor_port_get_parsed_status does; `*online` is then 0. */
QUOR_EXPORT QuorCode quor_port_get_online_status(QuorPort* port, int32_t* online);

/* ---- Port: checked block --------------------------------------------------------------------- */

/** The result of beginning a checked block. The port itself returns only success, failed and paper
 * present. Programs above the port may use all five results. */
enum {
  QUOR_RESULT_SUCCESS = 0, /**< the block has begun */
  QUOR_RESULT_FAILED = -1, /**< an exchange with the printer failed, or the printer is off line */
  QUOR_RESULT_IN_PROCESS = -2,    /**< not finished yet; never returned by the port */
  QUOR_RESULT_PAPER_PRESENT = -3, /**< nobody took the paper from the exit in time */
  QUOR_RESULT_IN_USE = -100 /**< another program uses the printer; never returned by the port */
};

/** Prepares the printer for a job whose printing quor_port_end_checked_block will verify. `status`
 * receives each status that the printer sends. Returns QUOR_OK if the exchange worked;
 * `*result_code` is then success, or failed if a line-mode printer was off line and nothing was
 * sent. Returns QUOR_FAILED if the exchange failed, or if the printer's counter was not reset
 * within the input/output time-out; `*result_code` is then failed. Also returns QUOR_FAILED if
 * nobody took the paper within the hold-print time-out; `*result_code` is then paper present.
 * Returns QUOR_PORT_EXCEPTION if the link is lost. */
QUOR_EXPORT QuorCode quor_port_begin_checked_block(QuorPort* port, QuorPrinterStatus_2* status,
                                                   uint32_t level, int64_t* result_code);

/** Marks the end of the job. Waits, up to the end-of-block time-out, until the printer has
 * processed all of the job or is off line; `status` shows which of the two. In ESC/POS, QUOR_OK
 * alone does not prove that the job was printed; use a print job for that. Returns QUOR_FAILED if a
 * write failed or the time-out passed, and QUOR_PORT_EXCEPTION if the link is lost. */
QUOR_EXPORT QuorCode quor_port_end_checked_block(QuorPort* port, QuorPrinterStatus_2* status,
                                                 uint32_t level);

/** Makes the printer drop the data that it has received and not yet printed. Returns QUOR_FAILED if
 * the command could not be written as a whole. */
QUOR_EXPORT QuorCode quor_port_start_data_cancel(QuorPort* port);

/* ---- Port: facts about the printer ----------------------------------------------------------- */

/** Ask for the firmware text. After success, quor_port_firmware_information returns this text;
 * after a failure it still returns the earlier text. The first function also checks the status, and
 * fails if the printer is off line. The second sends only the query of line mode, and the third
 * sends only the query of ESC/POS. All three return QUOR_FAILED if there is no answer within the
 * input/output time-out, and QUOR_UNREADABLE if an ESC/POS reply has only one byte.
 * @{ */
QUOR_EXPORT QuorCode quor_port_retrieve_firmware_information(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_retrieve_firmware_information2(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_retrieve_escpos_firmware_information(QuorPort* port);
/** @} */

/** Asks for both DIP-switch banks and appends them to the banks that
 * quor_port_dip_switch_information returns. Returns QUOR_FAILED if the printer did not answer for a
 * bank within the input/output time-out; if only bank 2 failed, bank 1 has been appended. */
QUOR_EXPORT QuorCode quor_port_retrieve_dip_switch_information(QuorPort* port);

/** Asks for the two setting bytes of `bank`, which is 1 or 2, and stores them in `settings`; the
 * port does not keep them. Returns QUOR_FAILED if there is no answer of two bytes within the
 * input/output time-out; `settings` is then unchanged. */
QUOR_EXPORT QuorCode quor_port_retrieve_dip_switch_bank(QuorPort* port, uint8_t bank,
                                                        uint8_t settings[2]);

/** Asks for the button-security time-out and stores it in `*milliseconds`. The value is 0 if button
 * security is off. Otherwise it is the printer's 5, 10 or 20 seconds plus the input/output
 * time-out, modulo 2^32. Returns QUOR_FAILED if there is no answer within the input/output
 * time-out. */
QUOR_EXPORT QuorCode quor_port_retrieve_button_security_timeout(QuorPort* port,
                                                                uint32_t* milliseconds);

/* ---- Port: the printer's Bluetooth module ---------------------------------------------------- */

/** Puts the printer's Bluetooth module into command mode, and checks that the module answers a
 * query. Takes 2.5 s, plus up to 11 s for the answer. Returns QUOR_FAILED if the module did not
 * answer or answered with an error, and QUOR_UNREADABLE if its answer is incomplete. */
QUOR_EXPORT QuorCode quor_port_enter_at_mode(QuorPort* port);

/** Waits for the module's result, up to `timeout` and at least one second, and copies the result.
 * `setting_title` may be null: the copied text is then the OK or ERROR line. With a title, the
 * copied text is the title and the `setting_length` characters after it; a length of 0 means all
 * characters after it. Returns QUOR_FAILED if no result arrived, and QUOR_UNREADABLE if the result
 * does not contain the title and `setting_length` characters after it. If the buffer is too small,
 * the text is lost. */
QUOR_EXPORT QuorCode quor_port_get_printer_response(QuorPort* port, const char* setting_title,
                                                    int32_t setting_length, int32_t timeout,
                                                    char* text, size_t capacity, size_t* length);

/** Ask the module to drop the link, and wait up to the input/output time-out until the link is
 * lost. The port remains open. Both functions return QUOR_FAILED if the link is not lost by then.
 * The first function puts the module into command mode; the second requires that the module is
 * already in command mode.
 * @{ */
QUOR_EXPORT QuorCode quor_port_disconnect(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_disconnect_bluetooth_connection(QuorPort* port);
/** @} */

/* ---- Port: properties ------------------------------------------------------------------------ */

/** Return the values that were passed to quor_port_create; the time-out is in milliseconds.
 * @{ */
QUOR_EXPORT int32_t quor_port_emulation(QuorPort* port);
QUOR_EXPORT uint32_t quor_port_timeout(QuorPort* port);
/** @} */

/** The time limit of quor_port_end_checked_block. Its initial value is the input/output time-out.
 * @{ */
QUOR_EXPORT uint32_t quor_port_end_checked_block_timeout(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_end_checked_block_timeout(QuorPort* port, uint32_t milliseconds);
/** @} */

/** How long quor_port_begin_checked_block waits, in line mode, for somebody to take the paper from
 * the exit. Initially 0.
 * @{ */
QUOR_EXPORT uint32_t quor_port_hold_print_timeout(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_hold_print_timeout(QuorPort* port, uint32_t milliseconds);
/** @} */

/** The number of seconds without data after which the printer drops an unfinished job. 0 means
 * never. With a negative value the printer keeps its own setting. The initial value is -1, unless
 * the port settings contain another value. Of a value above 255 only the low byte is sent.
 * @{ */
QUOR_EXPORT int64_t quor_port_data_timeout_seconds(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_data_timeout_seconds(QuorPort* port, int64_t seconds);
/** @} */

/** Copies the firmware text that was received last. Returns QUOR_NONE if no firmware text was
 * received yet. */
QUOR_EXPORT QuorCode quor_port_firmware_information(QuorPort* port, char* text, size_t capacity,
                                                    size_t* length);

/** Copies every DIP-switch bank that was read so far, two bytes each, the oldest first. */
QUOR_EXPORT QuorCode quor_port_dip_switch_information(QuorPort* port, uint8_t* banks,
                                                      size_t capacity, size_t* length);

/** The name, the serial number and the connection identifier of the chosen accessory. While the
 * port is closed, the functions for the texts return QUOR_NONE, and the function for the identifier
 * returns 0. Setting a text to null removes it.
 * @{ */
QUOR_EXPORT QuorCode quor_port_name(QuorPort* port, char* text, size_t capacity, size_t* length);
QUOR_EXPORT QuorCode quor_port_set_name(QuorPort* port, const char* name);
QUOR_EXPORT QuorCode quor_port_serial_number(QuorPort* port, char* text, size_t capacity,
                                             size_t* length);
QUOR_EXPORT QuorCode quor_port_set_serial_number(QuorPort* port, const char* serial_number);
QUOR_EXPORT uint64_t quor_port_connection_id(QuorPort* port);
QUOR_EXPORT QuorCode quor_port_set_connection_id(QuorPort* port, uint64_t connection_id);
/** @} */

/** Returns 1 if quor_port_open has ever chosen an accessory of the model "XQ700", and 0
 * otherwise. */
QUOR_EXPORT int32_t quor_port_is_brondel(QuorPort* port);

/** Returns 1 if the port has a thread of its own, and 0 if the port was not created on the main
 * thread. */
QUOR_EXPORT int32_t quor_port_has_thread71(QuorPort* port);

/** The result of the last quor_port_open: 1 if it succeeded, 0 if it failed; QUOR_NONE if the port
 * was not opened yet. Setting a negative value removes the result.
 * @{ */
QUOR_EXPORT QuorCode quor_port_result71(QuorPort* port, int32_t* result);
QUOR_EXPORT QuorCode quor_port_set_result71(QuorPort* port, int32_t result);
/** @} */

/** Return two intervals in seconds. The first is the pause between attempts of the retrying writer.
 * The second is the time that a write waits for space, and also the pause before a close.
 * @{ */
QUOR_EXPORT float quor_port_sec_interval1(QuorPort* port);
QUOR_EXPORT float quor_port_sec_interval2(QuorPort* port);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
