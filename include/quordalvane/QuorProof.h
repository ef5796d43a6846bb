#ifndef QUORDALVANE_QUORPROOF_H
#define QUORDALVANE_QUORPROOF_H

/** @file
 * The numbers of the proofs of a print job.
 */

/** How a printer confirms a job. */
enum {
  QUOR_PROOF_NONE = 0,  /**< no proof: the printer is not asked, and no job is confirmed */
  QUOR_PROOF_AUTO = 1,  /**< the proof= in the device text, or the printer's strongest proof */
  QUOR_PROOF_BLOCK = 2, /**< the printer counts the marks that enclose the data */
  QUOR_PROOF_PROCESS_ID =
      3, /**< the printer sends back four random characters that end the job; only in ESC/POS */
  QUOR_PROOF_IN_ORDER = 4 /**< the printer answers a query that ends the job; only in ESC/POS */
};

#endif
