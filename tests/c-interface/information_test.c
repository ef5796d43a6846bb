#include <string.h>

#include "Sentences.h"

static void TheFirmwareTextIsNullUntilItIsRetrieved(void) {
  QuorPort* port = openPortTo("virtual:,firmware=Till 4.2", QUOR_EMULATION_LINE);
  char text[32] = "before";
  size_t length = 99;
  EXPECT(quor_port_firmware_information(port, text, sizeof text, &length) == QUOR_NONE);
  EXPECT(length == 0 && strcmp(text, "before") == 0);
  EXPECT(quor_port_retrieve_firmware_information(port) == QUOR_OK);
  EXPECT(quor_port_firmware_information(port, text, sizeof text, &length) == QUOR_OK);
  EXPECT(length == 8 && strcmp(text, "Till 4.2") == 0);
  EXPECT(quor_port_retrieve_firmware_information2(port) == QUOR_OK);
  done(port);
}

static void ATooSmallBufferIsUnchangedAndTheNeededLengthIsReturned(void) {
  QuorPort* port = openPortTo("virtual:,firmware=Till 4.2", QUOR_EMULATION_ESCPOS);
  char text[9] = "before";
  size_t length = 0;
  REQUIRE(quor_port_retrieve_escpos_firmware_information(port) == QUOR_OK);
  EXPECT_FAILURE(quor_port_firmware_information(port, text, 8, &length), QUOR_BUFFER_TOO_SMALL,
                 "takes 8 bytes; 9 are needed");
  EXPECT(length == 8 && strcmp(text, "before") == 0);
  length = 0;
  EXPECT(quor_port_firmware_information(port, NULL, 0, &length) == QUOR_BUFFER_TOO_SMALL);
  EXPECT(length == 8);
  EXPECT(quor_port_firmware_information(port, text, 9, NULL) == QUOR_OK);
  EXPECT(strcmp(text, "Till 4.2") == 0);
  EXPECT(quor_port_firmware_information(port, NULL, 9, NULL) == QUOR_USAGE);
  done(port);
}

static void TheFirmwareOfAnOffLinePrinterCannotBeRetrieved(void) {
  QuorPort* port = openPortTo("virtual:,offline=true", QUOR_EMULATION_LINE);
  EXPECT_FAILURE(quor_port_retrieve_firmware_information(port), QUOR_FAILED, "firmware");
  done(port);
}

static void RetrievedDipSwitchBanksAreStored(void) {
  QuorPort* port = openPortTo("virtual:,dip1=c102,dip2=0304", QUOR_EMULATION_LINE);
  const uint8_t both[] = {0xc1, 0x02, 0x03, 0x04};
  uint8_t banks[8] = {0};
  size_t length = 99;
  EXPECT(quor_port_dip_switch_information(port, banks, sizeof banks, &length) == QUOR_OK);
  EXPECT(length == 0);
  EXPECT(quor_port_retrieve_dip_switch_information(port) == QUOR_OK);
  EXPECT(quor_port_dip_switch_information(port, banks, 3, &length) == QUOR_BUFFER_TOO_SMALL);
  EXPECT(length == 4 && banks[0] == 0);
  EXPECT(quor_port_dip_switch_information(port, banks, sizeof banks, &length) == QUOR_OK);
  EXPECT(length == 4 && memcmp(banks, both, sizeof both) == 0);
  done(port);
}

static void ASingleDipSwitchBankIsReturnedAndNotStored(void) {
  QuorPort* port = openPortTo("virtual:,dip2=0304", QUOR_EMULATION_LINE);
  uint8_t settings[3] = {0, 0, 0xee};
  size_t length = 99;
  EXPECT(quor_port_retrieve_dip_switch_bank(port, 2, settings) == QUOR_OK);
  EXPECT(settings[0] == 3 && settings[1] == 4 && settings[2] == 0xee);
  EXPECT(quor_port_dip_switch_information(port, NULL, 0, &length) == QUOR_OK);
  EXPECT(length == 0);
  done(port);
}

static void TheButtonSecurityTimeoutIncludesTheTimeoutOfThePort(void) {
  QuorPort* port = openPortTo("virtual:,dip1=8000", QUOR_EMULATION_LINE);
  uint32_t milliseconds = 0;
  EXPECT(quor_port_retrieve_button_security_timeout(port, &milliseconds) == QUOR_OK);
  EXPECT(milliseconds == 5000 + 3000);
  done(port);
}

static void ARetrievalFromASilentPrinterFails(void) {
  QuorPort* port = openPortTo("virtual:,drop-reply=all", QUOR_EMULATION_LINE);
  uint32_t milliseconds = 7;
  uint8_t settings[2] = {7, 7};
  EXPECT_FAILURE(quor_port_retrieve_button_security_timeout(port, &milliseconds), QUOR_FAILED,
                 "button-security");
  EXPECT(milliseconds == 7);
  EXPECT_FAILURE(quor_port_retrieve_dip_switch_bank(port, 1, settings), QUOR_FAILED, "DIP");
  EXPECT(settings[0] == 7 && settings[1] == 7);
  done(port);
}

static void TheBluetoothModuleAnswersAndDropsTheLink(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  char text[64] = "";
  size_t length = 0;
  EXPECT_FAILURE(quor_port_get_printer_response(port, NULL, 0, 1000, text, sizeof text, &length),
                 QUOR_FAILED, "no result");
  EXPECT(quor_port_enter_at_mode(port) == QUOR_OK);
  EXPECT(quor_port_write_with_retry(port, "AT?\r", 4, &length) == QUOR_OK);
  EXPECT_FAILURE(quor_port_get_printer_response(port, NULL, 0, 3000, NULL, sizeof text, &length),
                 QUOR_USAGE, "buffer");
  EXPECT(quor_port_get_printer_response(port, NULL, 0, 3000, text, sizeof text, &length) ==
         QUOR_OK);
  EXPECT(length == 9 && strcmp(text, "\r\nERROR\r\n") == 0);
  EXPECT(quor_port_disconnect_bluetooth_connection(port) == QUOR_OK);
  EXPECT(quor_port_is_connected(port) == 0);
  EXPECT_FAILURE(quor_port_disconnect(port), QUOR_FAILED, "Bluetooth");
  done(port);
}

static void TheAddressOfABluetoothModuleIsReadByItsTitle(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  char text[64] = "";
  size_t length = 0;
  REQUIRE(quor_port_enter_at_mode(port) == QUOR_OK);
  EXPECT(quor_port_write_with_retry(port, "AT*AILBA?\r", 10, &length) == QUOR_OK);
  EXPECT(quor_port_get_printer_response(port, "*AILBA:", 12, 3000, text, sizeof text, &length) ==
         QUOR_OK);
  EXPECT(strcmp(text, "*AILBA:001122334455") == 0);
  EXPECT(quor_port_write_with_retry(port, "AT*AILBA?\r", 10, &length) == QUOR_OK);
  EXPECT_FAILURE(
      quor_port_get_printer_response(port, "*AILBA:", 99, 3000, text, sizeof text, &length),
      QUOR_UNREADABLE, "");
  EXPECT(quor_port_write_with_retry(port, "AT*AILBA?\r", 10, &length) == QUOR_OK);
  EXPECT_FAILURE(quor_port_get_printer_response(port, "*AILBA:", 12, 3000, text, 19, &length),
                 QUOR_BUFFER_TOO_SMALL, "20 are needed");
  EXPECT(length == 19);
  done(port);
}

static void PropertiesOfAPortReturnTheValuesThatWereSet(void) {
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_ESCPOS);
  EXPECT(quor_port_emulation(port) == QUOR_EMULATION_ESCPOS);
  EXPECT(quor_port_timeout(port) == 3000);
  EXPECT(quor_port_end_checked_block_timeout(port) == 3000);
  EXPECT(quor_port_set_end_checked_block_timeout(port, UINT32_MAX) == QUOR_OK);
  EXPECT(quor_port_end_checked_block_timeout(port) == UINT32_MAX);
  EXPECT(quor_port_hold_print_timeout(port) == 0);
  EXPECT(quor_port_set_hold_print_timeout(port, 5000) == QUOR_OK);
  EXPECT(quor_port_hold_print_timeout(port) == 5000);
  EXPECT(quor_port_data_timeout_seconds(port) == -1);
  EXPECT(quor_port_set_data_timeout_seconds(port, 30) == QUOR_OK);
  EXPECT(quor_port_data_timeout_seconds(port) == 30);
  EXPECT(quor_port_sec_interval1(port) > 0.049F && quor_port_sec_interval1(port) < 0.051F);
  EXPECT(quor_port_sec_interval2(port) > 0.099F && quor_port_sec_interval2(port) < 0.101F);
  EXPECT(quor_port_has_thread71(port) == 1);
  done(port);
}

static void TheSettingsStringSetsTheDataTimeout(void) {
  const char* const spec = "virtual:";
  QuorPort* port = NULL;
  REQUIRE(quor_connect_devices(&spec, 1) == QUOR_OK);
  REQUIRE(quor_port_create(NULL, "d20", 3000, QUOR_EMULATION_LINE, &port) == QUOR_OK);
  EXPECT(quor_port_data_timeout_seconds(port) == 20);
  done(port);
}

static void AnOpenPortHasTheTextsOfItsAccessory(void) {
  QuorPort* port = portTo("virtual:,name=Till,serial=S1,id=77,model=XQ700", QUOR_EMULATION_LINE);
  char text[8] = "";
  int32_t result = 7;
  EXPECT(quor_port_name(port, text, sizeof text, NULL) == QUOR_NONE);
  EXPECT(quor_port_is_brondel(port) == 0);
  EXPECT(quor_port_result71(port, &result) == QUOR_NONE);
  REQUIRE(quor_port_open(port) == QUOR_OK);
  EXPECT(quor_port_name(port, text, sizeof text, NULL) == QUOR_OK && strcmp(text, "Till") == 0);
  EXPECT(quor_port_serial_number(port, text, sizeof text, NULL) == QUOR_OK);
  EXPECT(strcmp(text, "S1") == 0);
  EXPECT(quor_port_connection_id(port) == 77);
  EXPECT(quor_port_is_brondel(port) == 1);
  EXPECT(quor_port_result71(port, &result) == QUOR_OK && result == 1);
  EXPECT(quor_port_close(port) == QUOR_OK);
  EXPECT(quor_port_serial_number(port, text, sizeof text, NULL) == QUOR_NONE);
  EXPECT(quor_port_connection_id(port) == 0);
  quor_port_free(port);
}

static void TheNameAndTheSerialNumberOfAPortCanBeSet(void) {
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_LINE);
  char text[8] = "";
  int32_t result = 7;
  EXPECT(quor_port_set_name(port, "Till") == QUOR_OK);
  EXPECT(quor_port_name(port, text, sizeof text, NULL) == QUOR_OK && strcmp(text, "Till") == 0);
  EXPECT(quor_port_set_name(port, NULL) == QUOR_OK);
  EXPECT(quor_port_name(port, text, sizeof text, NULL) == QUOR_NONE);
  EXPECT(quor_port_set_serial_number(port, "") == QUOR_OK);
  EXPECT(quor_port_serial_number(port, text, sizeof text, NULL) == QUOR_OK && text[0] == '\0');
  EXPECT(quor_port_set_connection_id(port, UINT64_MAX) == QUOR_OK);
  EXPECT(quor_port_connection_id(port) == UINT64_MAX);
  EXPECT(quor_port_set_result71(port, 0) == QUOR_OK);
  EXPECT(quor_port_result71(port, &result) == QUOR_OK && result == 0);
  EXPECT(quor_port_set_result71(port, -1) == QUOR_OK);
  EXPECT(quor_port_result71(port, &result) == QUOR_NONE);
  done(port);
}

static void ANullResultPointerIsAUsageErrorAndSendsNothing(void) {
  QuorPort* port = openPortTo("virtual:,dip1=8000", QUOR_EMULATION_LINE);
  uint32_t milliseconds = 0;
  EXPECT_FAILURE(quor_port_result71(port, NULL), QUOR_USAGE, "result");
  EXPECT_FAILURE(quor_port_retrieve_dip_switch_bank(port, 1, NULL), QUOR_USAGE, "settings");
  EXPECT_FAILURE(quor_port_retrieve_button_security_timeout(port, NULL), QUOR_USAGE, "time-out");
  /* An answer to one of them would be taken for the next one's. */
  EXPECT(quor_port_retrieve_button_security_timeout(port, &milliseconds) == QUOR_OK);
  EXPECT(milliseconds == 5000 + 3000);
  done(port);
}

const Sentence informationSentences[] = {
    SENTENCE(TheFirmwareTextIsNullUntilItIsRetrieved),
    SENTENCE(ATooSmallBufferIsUnchangedAndTheNeededLengthIsReturned),
    SENTENCE(TheFirmwareOfAnOffLinePrinterCannotBeRetrieved),
    SENTENCE(RetrievedDipSwitchBanksAreStored),
    SENTENCE(ASingleDipSwitchBankIsReturnedAndNotStored),
    SENTENCE(TheButtonSecurityTimeoutIncludesTheTimeoutOfThePort),
    SENTENCE(ARetrievalFromASilentPrinterFails),
    SENTENCE(TheBluetoothModuleAnswersAndDropsTheLink),
    SENTENCE(TheAddressOfABluetoothModuleIsReadByItsTitle),
    SENTENCE(PropertiesOfAPortReturnTheValuesThatWereSet),
    SENTENCE(TheSettingsStringSetsTheDataTimeout),
    SENTENCE(AnOpenPortHasTheTextsOfItsAccessory),
    SENTENCE(TheNameAndTheSerialNumberOfAPortCanBeSet),
    SENTENCE(ANullResultPointerIsAUsageErrorAndSendsNothing),
    {NULL, NULL}};
