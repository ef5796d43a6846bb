#ifndef QUORDALVANE_QUORIOPORT_H
#define QUORDALVANE_QUORIOPORT_H

#include <stdint.h>

/**
 * The state of a printer, as its last status reply reported it.
 *
 * The caller owns the record; the port fills it and keeps no pointer to it. A flag is 1 if its
 * condition is present, and 0 otherwise. A line-mode reply fills every field. An ESC/POS status
 * fills coverOpen, offline, compulsionSwitch, receiptPaperEmpty and receiptPaperNearEmptyInner, and
 * does not change the other flags.
 *
 * The order and the widths of the fields are part of the binary interface.
 */
typedef struct QuorPrinterStatus_2_ {
  /* General state. */
  uint32_t coverOpen; /**< the cover is open */
  uint32_t offline;   /**< the printer is not ready to print */
  uint32_t
      compulsionSwitch; /**< the level of the switch input; in ESC/POS, of the drawer connector */

  /* Errors. */
  uint32_t overTemp;              /**< the print head is too hot to print */
  uint32_t unrecoverableError;    /**< an error from which the printer cannot recover by itself */
  uint32_t cutterError;           /**< the paper cutter failed */
  uint32_t mechError;             /**< the mechanism failed */
  uint32_t headThermistorError;   /**< the thermometer of the print head failed */
  uint32_t receiveBufferOverflow; /**< more data was sent than the printer could hold */
  uint32_t pageModeCmdError;      /**< a page-mode command was wrong */
  uint32_t paperDetectionError;   /**< the printer did not detect the paper */
  uint32_t blackMarkError; /**< the printer did not find the black marks where it expected them */
  uint32_t jamError;       /**< the paper is jammed */
  uint32_t presenterPaperJamError; /**< the paper is jammed in the presenter */
  uint32_t headUpError;            /**< the print head is raised */
  uint32_t voltageError;           /**< the supply voltage is wrong */

  /* Sensors on the receipt paper. */
  uint32_t receiptBlackMarkDetection;  /**< a black mark is at the sensor */
  uint32_t receiptPaperEmpty;          /**< the paper has run out */
  uint32_t receiptPaperNearEmptyInner; /**< the inner sensor finds little paper left */
  uint32_t receiptPaperNearEmptyOuter; /**< the outer sensor finds little paper left */

  /* Sensors along the paper path. */
  uint32_t paperPresent;           /**< paper is left in the exit */
  uint32_t presenterPaperPresent;  /**< paper is in the presenter */
  uint32_t peelerPaperPresent;     /**< paper is at the peeler */
  uint32_t stackerFull;            /**< the stacker is full */
  uint32_t slipTOF;                /**< slip paper is at the top-of-form sensor */
  uint32_t slipCOF;                /**< slip paper is at the cut-of-form sensor */
  uint32_t slipBOF;                /**< slip paper is at the bottom-of-form sensor */
  uint32_t validationPaperPresent; /**< paper for validation printing is in place */
  uint32_t slipPaperPresent;       /**< slip paper is in place */

  uint32_t etbAvailable; /**< the printer reports its ETB counter */

  /** The number of ETB commands that the printer has processed, modulo 256. The number is valid
   * only if etbAvailable is 1. */
  uint8_t etbCounter;

  uint8_t presenterState; /**< of the presenter: 0 idle, 1 holding paper, 2 retracted, 3 ejected */

  /** The link in use: 0 unknown, 1 serial, 2 USB, 3 Ethernet, 4 wireless LAN, 5 Bluetooth. */
  uint8_t connectedInterface;

  uint32_t rawLength; /**< how many bytes of raw the last reply fills */
  uint8_t raw[63];    /**< the last reply as it was received */
} QuorPrinterStatus_2;

#endif
