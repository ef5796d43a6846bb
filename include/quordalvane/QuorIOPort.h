#ifndef QUORDALVANE_QUORIOPORT_H
#define QUORDALVANE_QUORIOPORT_H

#include <stdint.h>

/**
 * What is known of a printer at one moment, as its last status reply told it.
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
  uint32_t coverOpen;
  uint32_t offline; /**< not ready to print */
  uint32_t compulsionSwitch;

  /* Errors. */
  uint32_t overTemp;
  uint32_t unrecoverableError;
  uint32_t cutterError;
  uint32_t mechError;
  uint32_t headThermistorError;
  uint32_t receiveBufferOverflow;
  uint32_t pageModeCmdError;
  uint32_t paperDetectionError;
  uint32_t blackMarkError;
  uint32_t jamError;
  uint32_t presenterPaperJamError;
  uint32_t headUpError;
  uint32_t voltageError;

  /* Sensors on the receipt paper. */
  uint32_t receiptBlackMarkDetection;
  uint32_t receiptPaperEmpty;
  uint32_t receiptPaperNearEmptyInner;
  uint32_t receiptPaperNearEmptyOuter;

  /* Sensors along the paper path. */
  uint32_t paperPresent; /**< paper left in the exit */
  uint32_t presenterPaperPresent;
  uint32_t peelerPaperPresent;
  uint32_t stackerFull;
  uint32_t slipTOF; /**< top of form */
  uint32_t slipCOF; /**< cut of form */
  uint32_t slipBOF; /**< bottom of form */
  uint32_t validationPaperPresent;
  uint32_t slipPaperPresent;

  /* How many ETB commands the printer has worked through, modulo 256; meaningful where etbAvailable
   * is 1. */
  uint32_t etbAvailable;
  uint8_t etbCounter;

  uint8_t presenterState; /**< 0 idle, 1 holding paper, 2 retracted, 3 ejected */
  uint8_t
      connectedInterface; /* 0 unknown, 1 serial, 2 USB, 3 Ethernet, 4 wireless LAN, 5 Bluetooth */

  /* The reply as it was received: the first rawLength bytes of raw. */
  uint32_t rawLength;
  uint8_t raw[63];
} QuorPrinterStatus_2;

#endif
