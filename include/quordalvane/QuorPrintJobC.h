#ifndef QUORDALVANE_QUORPRINTJOBC_H
#define QUORDALVANE_QUORPRINTJOBC_H

#include <quordalvane/QuorPortC.h>
#include <quordalvane/QuorProof.h>

/** @file
 * Inquiries of a printer, and print jobs; a part of QuorIOPortC.h.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Queries with checked answers ------------------------------------------------------------ */

/** Functions that query a printer over an open port and check its answers. The port's own queries,
 * in QuorPortC.h, do not check: they may accept the rest of an earlier answer, or bytes of another
 * kind of device, as the answer. Nothing is printed. The functions return QUOR_FAILED if there was
 * no answer or the link did not take the query, and QUOR_UNREADABLE if the answer was not one that
 * a printer gives. They return QUOR_PORT_EXCEPTION if the link is lost, and QUOR_USAGE if the
 * emulation is unknown. A function that fails does not change its results.
 *
 * Each function ends within twice the port's time-out plus five seconds, even if the printer never
 * stops sending; quor_printer_disconnect may take ten seconds more. Received bytes that nobody has
 * read are dropped. The observers of the port are removed. Only the thread that uses the port may
 * call the functions.
 */

/** Asks for the printer's status; `level` is only logged. */
QUOR_EXPORT QuorCode quor_printer_status(QuorPort* port, QuorPrinterStatus_2* status,
                                         uint32_t level);

/** Asks whether the printer is ready to print, and stores 1 in `*online` if it is, or 0
 * otherwise. */
QUOR_EXPORT QuorCode quor_printer_is_online(QuorPort* port, int32_t* online);

/** Asks for the firmware text and copies it as received. Returns QUOR_NOT_READY if the printer is
 * off line. */
QUOR_EXPORT QuorCode quor_printer_firmware(QuorPort* port, char* text, size_t capacity,
                                           size_t* length);

/** Asks for the DIP switches and stores the two setting bytes of bank 1, followed by those of bank
 * 2. */
QUOR_EXPORT QuorCode quor_printer_dip_switches(QuorPort* port, uint8_t settings[4]);

/** Asks for the button-security time-out and stores it in milliseconds. The value is 0 if button
 * security is off. Otherwise it is the printer's value plus the port's time-out. */
QUOR_EXPORT QuorCode quor_printer_button_security_timeout(QuorPort* port, uint32_t* milliseconds);

/** Finds the strongest proof of a job that the printer can give, and stores the number of this
 * proof from QuorProof.h; QUOR_PROOF_NONE if the printer gives no proof. An off-line ESC/POS
 * printer may hold back its answers; it then seems to give no proof. The query resets the printer's
 * count of end-of-job marks, so do not send it while another program prints. */
QUOR_EXPORT QuorCode quor_printer_proof(QuorPort* port, int32_t* proof);

/** Makes the printer drop the data that it has not printed yet. Returns when the link has taken the
 * command, because the printer sends no answer. */
QUOR_EXPORT QuorCode quor_printer_drop_all(QuorPort* port);

/** Makes the printer's Bluetooth module drop the link; the port remains open. */
QUOR_EXPORT QuorCode quor_printer_disconnect(QuorPort* port);

/* ---- Print job ------------------------------------------------------------------------------- */

/** The outcome of a job. */
enum {
  QUOR_PRINTED = 0,     /**< the printer confirmed that it has printed the whole job */
  QUOR_UNCONFIRMED = 1, /**< bytes were sent, and nothing proves whether they were printed */
  QUOR_REFUSED = 2      /**< no byte of the job was sent, so it is safe to send the job again */
};

/** Why a job was not confirmed as printed. */
enum {
  QUOR_OBSTACLE_NONE = 0,              /**< the job was printed, or has not been run */
  QUOR_OBSTACLE_PRINTER_NOT_READY = 1, /**< the printer is off line, or paper is in its exit */
  QUOR_OBSTACLE_LINK_LOST = 2,         /**< the link was lost before the job ended */
  QUOR_OBSTACLE_CANCELLED = 3,         /**< quor_print_job_cancel was called */
  QUOR_OBSTACLE_EXCHANGE_FAILED =
      4, /**< the printer did not answer, the link had no space for too long, or a write failed */
  QUOR_OBSTACLE_NO_PROOF =
      5 /**< all data was sent, but its confirmation is missing or could belong to another job */
};

/** One print job over an open port. The job sends its data once, and never again by itself. */
typedef struct QuorPrintJob QuorPrintJob;

/** A function of the caller. The job calls it on the thread that runs the job: when the job begins;
 * when its data is about to be sent; each time that the link has taken some data; when the wait for
 * the proof begins; and when the reason of the printer's pause changes (see
 * quor_print_job_waits_for). */
typedef void (*QuorProgress)(void* context, uint64_t bytes_accepted, uint64_t bytes_total);

/** Creates a job, which keeps the port alive. `proof` is a number from QuorProof.h and selects how
 * the printer confirms the job; for any other number this function returns QUOR_USAGE. `progress`
 * may be null; `context` must exist until the job has run. */
QUOR_EXPORT QuorCode quor_print_job_create(QuorPort* port, int32_t proof, QuorProgress progress,
                                           void* context, QuorPrintJob** job);

/** Frees the handle and releases the port. Must not be called while the job runs. */
QUOR_EXPORT void quor_print_job_free(QuorPrintJob* job);

/** Prints `size` bytes and returns when the outcome is known; the functions below return the
 * outcome. QUOR_OK says nothing about the outcome. May be called once; a second call returns
 * QUOR_USAGE. Blocks at most for the time-outs of the port. The port remains open, unless the job
 * was cancelled. If memory is short or the system fails, the outcome is unconfirmed and the number
 * of bytes sent is unknown. */
QUOR_EXPORT QuorCode quor_print_job_run(QuorPrintJob* job, const void* data, size_t size);

/** Abandons the job. The job notices the cancel at its next read or write, after at most 0.3 s.
 * Then it sends the printer a command to drop the rest of the data, and waits at most 0.5 s until
 * the link has taken this command. In any case the job then closes the port. Any thread and any
 * signal handler may call this function, even before the run. */
QUOR_EXPORT void quor_print_job_cancel(QuorPrintJob* job);

/** Return the outcome, the obstacle (why the job was not confirmed), the result code of the
 * beginning of the checked block (failed if there was no block), and the size of the job in bytes.
 * Before the run the outcome is refused and the obstacle is QUOR_OBSTACLE_NONE. Only the thread
 * that ran the job may call these functions.
 * @{ */
QUOR_EXPORT int32_t quor_print_job_outcome(QuorPrintJob* job);
QUOR_EXPORT int32_t quor_print_job_obstacle(QuorPrintJob* job);
QUOR_EXPORT int64_t quor_print_job_result_code(QuorPrintJob* job);
QUOR_EXPORT uint64_t quor_print_job_bytes_total(QuorPrintJob* job);
/** @} */

/** Returns the proof that was used: QUOR_PROOF_NONE if the printer gives no proof, and
 * QUOR_PROOF_AUTO if the job ended before a proof was chosen. */
QUOR_EXPORT int32_t quor_print_job_proof(QuorPrintJob* job);

/** Copies the reason why the printer has paused in the job, for example "cover open"; "" if it has
 * not paused. The printer continues when the cause is removed. Only the progress function may call
 * this function, and only on the thread that runs the job. */
QUOR_EXPORT QuorCode quor_print_job_waits_for(QuorPrintJob* job, char* text, size_t capacity,
                                              size_t* length);

/** Returns the exact number of bytes of the job that the link took. */
QUOR_EXPORT uint64_t quor_print_job_bytes_accepted(QuorPrintJob* job);

/** Stores the last status of the printer; returns QUOR_NONE if there was no status. As soon as data
 * of the job is sent, an earlier status is dropped. */
QUOR_EXPORT QuorCode quor_print_job_status(QuorPrintJob* job, QuorPrinterStatus_2* status);

/** Copy two texts for a person: the reason why the job was not printed, and advice on the next
 * step. Both texts are "" if the job was printed.
 * @{ */
QUOR_EXPORT QuorCode quor_print_job_reason(QuorPrintJob* job, char* text, size_t capacity,
                                           size_t* length);
QUOR_EXPORT QuorCode quor_print_job_advice(QuorPrintJob* job, char* text, size_t capacity,
                                           size_t* length);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
