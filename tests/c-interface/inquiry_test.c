#include <string.h>

#include "Sentences.h"

static void AnInquiryReturnsTheStatusOfThePrinter(void) {
  QuorPort* port = openPortTo("virtual:,coverOpen=true", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  int32_t online = 7;
  EXPECT(quor_printer_status(port, &status, 0) == QUOR_OK);
  EXPECT(status.coverOpen == 1 && status.offline == 1);
  EXPECT(quor_printer_is_online(port, &online) == QUOR_OK);
  EXPECT(online == 0);
  EXPECT_FAILURE(quor_printer_status(port, NULL, 0), QUOR_USAGE, "the status");
  EXPECT_FAILURE(quor_printer_is_online(port, NULL), QUOR_USAGE, "the answer");
  EXPECT_FAILURE(quor_printer_status(NULL, &status, 0), QUOR_USAGE, "the port");
  done(port);
}

static void AnInquiryReturnsTheProofThatThePrinterSupports(void) {
  static const struct {
    const char* device;
    int32_t emulation;
    int32_t proof;
  } rows[] = {
      {"virtual:", QUOR_EMULATION_LINE, QUOR_PROOF_BLOCK},
      {"virtual:proofs=process-id+in-order", QUOR_EMULATION_ESCPOS, QUOR_PROOF_PROCESS_ID},
      {"virtual:proofs=none", QUOR_EMULATION_ESCPOS, QUOR_PROOF_NONE},
  };
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i) {
    QuorPort* port = openPortTo(rows[i].device, rows[i].emulation);
    int32_t proof = 7;
    EXPECT(quor_printer_proof(port, &proof) == QUOR_OK);
    EXPECT(proof == rows[i].proof);
    done(port);
  }
}

static void AnInquiryDoesNotTakeALateAnswerForTheNext(void) {
  QuorPort* port = openPortTo("virtual:,offline=true,split-reply=3@1", QUOR_EMULATION_LINE);
  int32_t online = 7;
  EXPECT(quor_printer_is_online(port, &online) == QUOR_OK);
  EXPECT(online == 0);
  done(port);
}

static void AnInquiryReportsAnInvalidAnswerAsUnreadable(void) {
  QuorPort* port = openPortTo("virtual:,stray-byte=41@1", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status;
  memset(&status, 0x5a, sizeof status);
  EXPECT_FAILURE(quor_printer_status(port, &status, 0), QUOR_UNREADABLE, "not a status");
  EXPECT(status.coverOpen == 0x5a5a5a5a);
  done(port);
}

static void AnInquiryReturnsFirmwareDipSwitchesAndButtonSecurity(void) {
  QuorPort* port =
      openPortTo("virtual:,firmware=Till 4.2,dip1=8002,dip2=0304", QUOR_EMULATION_LINE);
  const uint8_t both[] = {0x80, 0x02, 0x03, 0x04};
  char text[16] = "";
  size_t length = 0;
  uint8_t settings[4] = {0};
  uint32_t milliseconds = 0;
  EXPECT(quor_printer_firmware(port, text, sizeof text, &length) == QUOR_OK);
  EXPECT(length == 8 && strcmp(text, "Till 4.2") == 0);
  EXPECT(quor_printer_firmware(port, text, 8, &length) == QUOR_BUFFER_TOO_SMALL);
  EXPECT(quor_printer_dip_switches(port, settings) == QUOR_OK);
  EXPECT(memcmp(settings, both, sizeof both) == 0);
  EXPECT(quor_printer_button_security_timeout(port, &milliseconds) == QUOR_OK);
  EXPECT(milliseconds == 5000 + 3000);
  EXPECT(quor_printer_drop_all(port) == QUOR_OK);
  EXPECT(quor_printer_disconnect(port) == QUOR_OK);
  EXPECT(quor_port_is_connected(port) == 0);
  done(port);
}

static void AnInquiryForTheFirmwareOfAnOffLinePrinterIsNotReady(void) {
  QuorPort* port = openPortTo("virtual:,offline=true", QUOR_EMULATION_LINE);
  char text[16] = "before";
  EXPECT_FAILURE(quor_printer_firmware(port, text, sizeof text, NULL), QUOR_NOT_READY, "off line");
  EXPECT(strcmp(text, "before") == 0);
  done(port);
}

static void AnUnansweredInquiryReportsItsCause(void) {
  QuorPrinterStatus_2 status;
  QuorPort* port = openPortTo("virtual:,drop-reply=all", QUOR_EMULATION_LINE);
  EXPECT_FAILURE(quor_printer_status(port, &status, 0), QUOR_FAILED, "did not answer");
  done(port);
  port = openPortTo("virtual:,cut-after-in=0", QUOR_EMULATION_LINE);
  EXPECT_FAILURE(quor_printer_status(port, &status, 0), QUOR_PORT_EXCEPTION, "lost");
  done(port);
  port = openPortTo("virtual:", QUOR_EMULATION_UNKNOWN);
  EXPECT_FAILURE(quor_printer_status(port, &status, 0), QUOR_USAGE, "emulation");
  done(port);
}

static void AnInquiryWithANullResultPointerIsAUsageError(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  EXPECT_FAILURE(quor_printer_status(port, NULL, 0), QUOR_USAGE, "status");
  EXPECT_FAILURE(quor_printer_is_online(port, NULL), QUOR_USAGE, "answer");
  EXPECT_FAILURE(quor_printer_firmware(port, NULL, 8, NULL), QUOR_USAGE, "buffer");
  EXPECT_FAILURE(quor_printer_dip_switches(port, NULL), QUOR_USAGE, "settings");
  EXPECT_FAILURE(quor_printer_button_security_timeout(port, NULL), QUOR_USAGE, "time-out");
  EXPECT_FAILURE(quor_printer_proof(port, NULL), QUOR_USAGE, "proof");
  done(port);
}

const Sentence inquirySentences[] = {SENTENCE(AnInquiryReturnsTheStatusOfThePrinter),
                                     SENTENCE(AnInquiryReturnsTheProofThatThePrinterSupports),
                                     SENTENCE(AnInquiryDoesNotTakeALateAnswerForTheNext),
                                     SENTENCE(AnInquiryReportsAnInvalidAnswerAsUnreadable),
                                     SENTENCE(AnInquiryReturnsFirmwareDipSwitchesAndButtonSecurity),
                                     SENTENCE(AnInquiryForTheFirmwareOfAnOffLinePrinterIsNotReady),
                                     SENTENCE(AnUnansweredInquiryReportsItsCause),
                                     SENTENCE(AnInquiryWithANullResultPointerIsAUsageError),
                                     {0}};
