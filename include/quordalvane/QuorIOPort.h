#ifndef QUORDALVANE_QUORIOPORT_H
#define QUORDALVANE_QUORIOPORT_H

#include <stdint.h>

/**
 * The state of a printer at one moment, as its last status reply reported it.
 *
 * The record belongs to the caller; the port writes into it and keeps nothing of it. A flag is 0
 * when the condition is absent and 1 when it is present. A line-mode reply fills every field; an
 * ESC/POS status fills coverOpen, offline, compulsionSwitch, receiptPaperEmpty and
 * receiptPaperNearEmptyInner and leaves the other flags as the caller had them.
 *
 * The order and the widths of the fields are part of the binary interface.
 */
typedef struct QuorPrinterStatus_2_ {
  /* General state. */
  uint32_t coverOpen;        /**< the cover is open */
  uint32_t offline;          /**< not ready to print */
  uint32_t compulsionSwitch; /**< the switch input; in ESC/POS the level at the drawer connector */

  /* Errors. */
  uint32_t overTemp;               /**< it is too hot to print */
  uint32_t unrecoverableError;     /**< one that the printer cannot end by itself */
  uint32_t cutterError;            /**< the paper cutter failed */
  uint32_t mechError;              /**< the mechanism failed */
  uint32_t headThermistorError;    /**< the thermometer of the print head failed */
  uint32_t receiveBufferOverflow;  /**< more was sent than the printer could hold */
  uint32_t pageModeCmdError;       /**< a page-mode command was wrong */
  uint32_t paperDetectionError;    /**< the paper was not found */
  uint32_t blackMarkError;         /**< black marks were not found as they must be */
  uint32_t jamError;               /**< the paper is jammed */
  uint32_t presenterPaperJamError; /**< the paper is jammed in the presenter */
  uint32_t headUpError;            /**< the print head is raised */
  uint32_t voltageError;           /**< the supply voltage is wrong */

  /* Sensors on the receipt paper. */
  uint32_t receiptBlackMarkDetection;  /**< a black mark is at the sensor */
  uint32_t receiptPaperEmpty;          /**< the paper has run out */
  uint32_t receiptPaperNearEmptyInner; /**< near its end, by the inner sensor */
  uint32_t receiptPaperNearEmptyOuter; /**< near its end, by the outer sensor */

  /* Sensors along the paper path. */
  uint32_t paperPresent;           /**< paper left in the exit */
  uint32_t presenterPaperPresent;  /**< paper in the presenter */
  uint32_t peelerPaperPresent;     /**< paper at the peeler */
  uint32_t stackerFull;            /**< the stacker takes no more */
  uint32_t slipTOF;                /**< slip paper at the top-of-form sensor */
  uint32_t slipCOF;                /**< slip paper at the cut-of-form sensor */
  uint32_t slipBOF;                /**< slip paper at the bottom-of-form sensor */
  uint32_t validationPaperPresent; /**< paper for validation printing is in place */
  uint32_t slipPaperPresent;       /**< slip paper is in place */

  uint32_t etbAvailable; /**< the printer reports its ETB counter */

  /** How many ETB commands the printer has worked through, modulo 256; meaningful if
   * etbAvailable is 1. */
  uint8_t etbCounter;

  uint8_t presenterState; /**< 0 idle, 1 holding paper, 2 retracted, 3 ejected */

  /** The link in use: 0 unknown, 1 serial, 2 USB, 3 Ethernet, 4 wireless LAN, 5 Bluetooth. */
  uint8_t connectedInterface;

  uint32_t rawLength; /**< how many bytes of raw are of the last reply */
  uint8_t raw[63];    /**< the reply as it was received, its first byte first */
} QuorPrinterStatus_2;

#endif
