#ifndef QUORDALVANE_QUORPROOF_H
#define QUORDALVANE_QUORPROOF_H

/** @file
 * The proofs of a print job, by their numbers.
 */

/** How a printer confirms a job. */
enum {
  QUOR_PROOF_NONE = 0,  /**< not at all: it is not asked, and the job is unconfirmed at best */
  QUOR_PROOF_AUTO = 1,  /**< as proof= of its device says; otherwise it is asked before the job */
  QUOR_PROOF_BLOCK = 2, /**< it counts marks before and after the data */
  QUOR_PROOF_PROCESS_ID = 3, /**< it names four random characters that end the job; ESC/POS alone */
  QUOR_PROOF_IN_ORDER =
      4 /**< it answers a question that ends the job, in its turn; ESC/POS alone */
};

#endif
