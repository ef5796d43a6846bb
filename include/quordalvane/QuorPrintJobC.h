#ifndef QUORDALVANE_QUORPRINTJOBC_H
#define QUORDALVANE_QUORPRINTJOBC_H

#include <quordalvane/QuorPortC.h>
#include <quordalvane/QuorProof.h>

/** @file
 * Questions to a printer, and print jobs; a part of QuorIOPortC.h.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Questions with judged answers ----------------------------------------------------------- */

/** Ask a printer over an open port, and judge the answers. The queries of the port itself, in
 * QuorPortC.h, may take the rest of one answer, or the bytes of another device, for the next
 * answer; these do not. Nothing is printed.
 *
 * QUOR_FAILED if there was no answer or the link did not take the question, QUOR_UNREADABLE if
 * something answered and not as a printer does, QUOR_PORT_EXCEPTION if the link is lost,
 * QUOR_USAGE if the emulation is unknown. Results are then untouched.
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

/** Stores the strongest proof of a job that the printer gives, one of the numbers of QuorProof.h,
 * none if it gives none. A printer that is off line may keep its answers in ESC/POS, and then seems
 * to give none. Its count of marks begins anew: do not ask while another program prints on it. */
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

/** One print job over an open port. It is sent once and never again by itself. */
typedef struct QuorPrintJob QuorPrintJob;

/** Called on the thread that runs the job: when its block begins, before its data is sent, after
 * each piece that was sent, when its block ends, and when the reason changes for which the printer
 * has paused, see quor_print_job_waits_for. */
typedef void (*QuorProgress)(void* context, uint64_t bytes_accepted, uint64_t bytes_total);

/** Creates a job, which keeps the port for itself as long as it lives. `proof`, a number of
 * QuorProof.h, says how the printer is to confirm it; QUOR_USAGE for another number. `progress` may
 * be null; `context` must outlive the run. */
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

#ifdef __cplusplus
}
#endif

#endif
