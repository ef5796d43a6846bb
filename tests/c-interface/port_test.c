#include <pthread.h>
#include <stdint.h>
#include <string.h>

#include "Sentences.h"

static const uint8_t statusRequest[] = {0x1b, 0x06, 0x01};

static void APortNeedsDevices(void) {
  QuorPort* port = (QuorPort*)statusRequest;
  EXPECT_FAILURE(quor_port_create(NULL, NULL, 1000, QUOR_EMULATION_LINE, &port), QUOR_FAILED,
                 "no devices");
  EXPECT(port == NULL);
}

static void AnInvalidDeviceTextDoesNotChangeTheDevices(void) {
  const char* const good = "virtual:,name=Till";
  const char* const bad[] = {"virtual:", "carrier-pigeon:"};
  const char* const null[] = {NULL};
  EXPECT(quor_connect_devices(&good, 1) == QUOR_OK);
  EXPECT_FAILURE(quor_connect_devices(bad, 2), QUOR_USAGE, "carrier-pigeon");
  EXPECT_FAILURE(quor_connect_devices(null, 1), QUOR_USAGE, "null");
  EXPECT_FAILURE(quor_connect_devices(NULL, 1), QUOR_USAGE, "null");
  QuorPort* port = NULL;
  REQUIRE(quor_port_create("BT:Till", NULL, 1000, QUOR_EMULATION_LINE, &port) == QUOR_OK);
  EXPECT(quor_port_open(port) == QUOR_OK);
  done(port);
}

static void APortWithoutDevicesCannotBeOpened(void) {
  EXPECT(quor_connect_devices(NULL, 0) == QUOR_OK);
  QuorPort* port = NULL;
  REQUIRE(quor_port_create(NULL, NULL, 1000, QUOR_EMULATION_LINE, &port) == QUOR_OK);
  EXPECT_FAILURE(quor_port_open(port), QUOR_FAILED, "no accessory matches");
  done(port);
}

static void AnUnknownEmulationIsRefused(void) {
  const char* const spec = "virtual:";
  REQUIRE(quor_connect_devices(&spec, 1) == QUOR_OK);
  QuorPort* port = NULL;
  EXPECT_FAILURE(quor_port_create(NULL, NULL, 1000, 3, &port), QUOR_USAGE,
                 "no emulation with the number 3");
  EXPECT_FAILURE(quor_port_create(NULL, NULL, 1000, -1, &port), QUOR_USAGE,
                 "no emulation with the number -1");
  EXPECT(port == NULL);
}

static void APortIsConnectedFromOpenToClose(void) {
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_LINE);
  EXPECT(quor_port_is_connected(port) == 0);
  EXPECT(quor_port_open(port) == QUOR_OK);
  EXPECT(quor_port_is_connected(port) == 1);
  EXPECT(quor_port_close(port) == QUOR_OK);
  EXPECT(quor_port_is_connected(port) == 0);
  EXPECT(quor_port_close(port) == QUOR_OK);
  quor_port_free(port);
  quor_port_free(NULL);
}

static void TheErrorOfAnUnreachablePrinterNamesItsPlace(void) {
  QuorPort* port = portTo("unix:/no/such/place", QUOR_EMULATION_LINE);
  EXPECT_FAILURE(quor_port_open(port), QUOR_FAILED, "cannot be reached");
  EXPECT(strstr(quor_last_error(), "/no/such/place") != NULL);
  done(port);
}

static void AFailedOpenReportsTheReasonOfTheChosenPrinter(void) {
  const char* const specs[] = {
      "unix:/no/such/place,name=A,id=7", "unix:/no/other/place,name=B,serial=1,id=7",
      "unix:/no/third/place,name=B,serial=2,id=7", "unix:/no/fourth/place,name=B,serial=4,id=8"};
  const char* const names[] = {"BT:A", "BT:B", "BT:2", "BT:4"};
  const char* const places[] = {"/no/such/place", "/no/other/place", "/no/third/place",
                                "/no/fourth/place"};
  REQUIRE(quor_connect_devices(specs, 4) == QUOR_OK);
  for (int i = 0; i < 4; ++i) {
    QuorPort* port = NULL;
    REQUIRE(quor_port_create(names[i], NULL, 1000, QUOR_EMULATION_LINE, &port) == QUOR_OK);
    EXPECT_FAILURE(quor_port_open(port), QUOR_FAILED, places[i]);
    done(port);
  }
}

static void APortNameThatIsTooShortIsReported(void) {
  const char* const spec = "virtual:";
  REQUIRE(quor_connect_devices(&spec, 1) == QUOR_OK);
  QuorPort* port = NULL;
  REQUIRE(quor_port_create("BT", NULL, 1000, QUOR_EMULATION_LINE, &port) == QUOR_OK);
  EXPECT_FAILURE(quor_port_open(port), QUOR_FAILED, "\"BT\" is shorter than its prefix");
  done(port);
}

static void ANullPointerIsAUsageError(void) {
  size_t count = 0;
  EXPECT_FAILURE(quor_port_open(NULL), QUOR_USAGE, "port must not be null");
  EXPECT_FAILURE(quor_port_create(NULL, NULL, 0, 0, NULL), QUOR_USAGE, "null");
  EXPECT(quor_port_is_connected(NULL) == 0);
  EXPECT(quor_port_timeout(NULL) == 0);
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_LINE);
  EXPECT_FAILURE(quor_port_write(port, NULL, 1, &count), QUOR_USAGE, "data must not be null");
  EXPECT_FAILURE(quor_port_write(port, "a", 1, NULL), QUOR_USAGE, "count must not be null");
  EXPECT_FAILURE(quor_port_get_parsed_status(port, NULL, 0), QUOR_USAGE, "status");
  EXPECT_FAILURE(quor_port_get_online_status(port, NULL), QUOR_USAGE, "answer");
  QuorPrinterStatus_2 status = {0};
  int64_t code = 7;
  EXPECT_FAILURE(quor_port_begin_checked_block(port, &status, 0, NULL), QUOR_USAGE, "result code");
  EXPECT_FAILURE(quor_port_begin_checked_block(port, NULL, 0, &code), QUOR_USAGE, "status");
  EXPECT(code == QUOR_RESULT_FAILED);
  EXPECT_FAILURE(quor_port_end_checked_block(port, NULL, 0), QUOR_USAGE, "status");
  EXPECT_FAILURE(quor_port_start_data_cancel(NULL), QUOR_USAGE, "port");
  EXPECT_FAILURE(quor_port_set_transfer_observer(NULL, NULL, NULL, NULL), QUOR_USAGE, "port");
  done(port);
}

static void AWriteOfMoreThanTwoGibibytesIsRefused(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  size_t count = 99;
  EXPECT_FAILURE(quor_port_write(port, "a", (size_t)INT32_MAX + 1, &count), QUOR_USAGE, "counted");
  EXPECT_FAILURE(quor_port_write_with_retry(port, "a", SIZE_MAX, &count), QUOR_USAGE, "counted");
  EXPECT(count == 0);
  done(port);
}

static size_t readWhole(QuorPort* port, uint8_t* bytes, size_t wanted) {
  size_t gathered = 0;
  for (int attempt = 0; attempt < 20 && gathered < wanted; ++attempt) {
    size_t length = 0;
    EXPECT(quor_port_read(port, bytes + gathered, wanted - gathered, &length) == QUOR_OK);
    gathered += length;
  }
  return gathered;
}

static void BytesAreWrittenAndRead(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  uint8_t reply[4] = {0};
  size_t count = 99;
  EXPECT(quor_port_write(port, NULL, 0, &count) == QUOR_OK);
  EXPECT(count == 0);
  EXPECT(quor_port_write(port, statusRequest, sizeof statusRequest, &count) == QUOR_OK);
  EXPECT(count == sizeof statusRequest);
  EXPECT_FAILURE(quor_port_read(port, NULL, sizeof reply, &count), QUOR_USAGE, "buffer");
  EXPECT(readWhole(port, reply, sizeof reply) == sizeof reply);
  EXPECT((reply[0] & 0xc0) == 0x80);
  EXPECT(quor_port_write_with_retry(port, statusRequest, sizeof statusRequest, &count) == QUOR_OK);
  EXPECT(count == sizeof statusRequest);
  EXPECT(quor_port_read(port, NULL, 0, &count) == QUOR_OK);
  EXPECT(count == 0);
  done(port);
}

static void AReadOrWriteOnALostLinkFails(void) {
  QuorPort* port = openPortTo("virtual:,cut-after-in=1:at-once", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  uint8_t byte = 0;
  size_t count = 99;
  quor_port_write(port, statusRequest, sizeof statusRequest, &count);
  EXPECT_FAILURE(quor_port_write(port, "a", 1, &count), QUOR_FAILED, "written");
  EXPECT(count == 0);
  EXPECT_FAILURE(quor_port_read(port, &byte, 1, &count), QUOR_FAILED, "lost");
  EXPECT_FAILURE(quor_port_get_parsed_status(port, &status, 0), QUOR_PORT_EXCEPTION,
                 "Native WritePort failed");
  done(port);
}

static void AStatusReportsAnOpenCover(void) {
  QuorPort* port = openPortTo("virtual:,coverOpen=true", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  int32_t online = 1;
  EXPECT(quor_port_get_parsed_status(port, &status, 0) == QUOR_OK);
  EXPECT(status.coverOpen == 1 && status.offline == 1 && status.receiptPaperEmpty == 0);
  EXPECT(quor_port_get_online_status(port, &online) == QUOR_OK);
  EXPECT(online == 0);
  done(port);
}

static void TheOnlineStatusReportsAPrinterThatIsOnLine(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_ESCPOS);
  int32_t online = 0;
  EXPECT(quor_port_get_online_status(port, &online) == QUOR_OK);
  EXPECT(online == 1);
  done(port);
}

static void TheStatusOfASilentPrinterFails(void) {
  QuorPort* port = openPortTo("virtual:,drop-reply=all", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status;
  memset(&status, 7, sizeof status);
  const QuorPrinterStatus_2 before = status;
  int32_t online = 1;
  EXPECT_FAILURE(quor_port_get_parsed_status(port, &status, 0), QUOR_FAILED, "status");
  EXPECT(memcmp(&status, &before, sizeof status) == 0);
  EXPECT_FAILURE(quor_port_get_online_status(port, &online), QUOR_FAILED, "status");
  EXPECT(online == 0);
  done(port);
}

static void ACheckedBlockCanBeBegunAndEnded(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  int64_t result = QUOR_RESULT_FAILED;
  size_t count = 0;
  EXPECT(quor_port_begin_checked_block(port, &status, 2, &result) == QUOR_OK);
  EXPECT(result == QUOR_RESULT_SUCCESS);
  EXPECT(quor_port_write(port, "text\n", 5, &count) == QUOR_OK);
  EXPECT(quor_port_end_checked_block(port, &status, 2) == QUOR_OK);
  EXPECT(status.offline == 0 && status.etbCounter == 2);
  EXPECT(quor_port_start_data_cancel(port) == QUOR_OK);
  done(port);
}

static void ACheckedBlockOnAnOffLinePrinterIsRefusedByItsResultCode(void) {
  QuorPort* port = openPortTo("virtual:,offline=true", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  int64_t result = QUOR_RESULT_SUCCESS;
  EXPECT(quor_port_begin_checked_block(port, &status, 2, &result) == QUOR_OK);
  EXPECT(result == QUOR_RESULT_FAILED);
  EXPECT(status.offline == 1);
  done(port);
}

static void ACheckedBlockReportsPaperInTheExitByItsResultCode(void) {
  QuorPort* port = openPortTo("virtual:,paperPresent=true", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  int64_t result = QUOR_RESULT_SUCCESS;
  EXPECT_FAILURE(quor_port_begin_checked_block(port, &status, 2, &result), QUOR_FAILED, "prepared");
  EXPECT(result == QUOR_RESULT_PAPER_PRESENT);
  done(port);
}

typedef struct Traffic {
  size_t out;
  size_t in;
  int32_t answer;
} Traffic;

static int32_t countWritten(void* context, size_t count) {
  Traffic* traffic = context;
  traffic->out += count;
  return traffic->answer;
}

static int32_t countRead(void* context, const uint8_t* bytes, size_t count) {
  Traffic* traffic = context;
  EXPECT(bytes != NULL || count == 0);
  traffic->in += count;
  return 0;
}

static void ATransferObserverSeesEveryByteAndCanStopAnOperation(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  Traffic traffic = {0, 0, 0};
  uint8_t reply[4] = {0};
  size_t count = 0;
  REQUIRE(quor_port_set_transfer_observer(port, countWritten, countRead, &traffic) == QUOR_OK);
  EXPECT(quor_port_write(port, statusRequest, sizeof statusRequest, &count) == QUOR_OK);
  EXPECT(readWhole(port, reply, sizeof reply) == sizeof reply);
  EXPECT(traffic.out == sizeof statusRequest && traffic.in == sizeof reply);
  traffic.answer = 1;
  EXPECT_FAILURE(quor_port_write(port, statusRequest, sizeof statusRequest, &count), QUOR_STOPPED,
                 "stopped");
  EXPECT(count == 0);
  EXPECT(quor_port_set_transfer_observer(port, NULL, NULL, NULL) == QUOR_OK);
  EXPECT(quor_port_write(port, statusRequest, sizeof statusRequest, &count) == QUOR_OK);
  EXPECT(traffic.out == 2 * sizeof statusRequest);
  done(port);
}

static void ATransferObserverMayBeOfOneDirectionOnly(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  Traffic traffic = {0, 0, 0};
  QuorPrinterStatus_2 status = {0};
  REQUIRE(quor_port_set_transfer_observer(port, countWritten, NULL, &traffic) == QUOR_OK);
  EXPECT(quor_port_get_parsed_status(port, &status, 0) == QUOR_OK);
  const size_t request = traffic.out;
  EXPECT(request > sizeof statusRequest && traffic.in == 0);
  REQUIRE(quor_port_set_transfer_observer(port, NULL, countRead, &traffic) == QUOR_OK);
  EXPECT(quor_port_get_parsed_status(port, &status, 0) == QUOR_OK);
  EXPECT(traffic.out == request && traffic.in == status.rawLength);
  done(port);
}

static void* lastErrorThere(void* unused) {
  (void)unused;
  return (void*)quor_last_error();
}

static void EachThreadHasItsOwnLastError(void) {
  EXPECT(strcmp(quor_last_error(), "") == 0);
  EXPECT_FAILURE(quor_port_open(NULL), QUOR_USAGE, "port");
  pthread_t thread;
  void* there = NULL;
  REQUIRE(pthread_create(&thread, NULL, lastErrorThere, NULL) == 0);
  REQUIRE(pthread_join(thread, &there) == 0);
  EXPECT(there != (const void*)quor_last_error());
  EXPECT(strstr(quor_last_error(), "port") != NULL);
}

static void TheVersionIsTheVersionOfTheProject(void) {
  EXPECT(strcmp(quor_version(), QUOR_VERSION) == 0);
}

const Sentence portSentences[] = {SENTENCE(APortNeedsDevices),
                                  SENTENCE(AnInvalidDeviceTextDoesNotChangeTheDevices),
                                  SENTENCE(APortWithoutDevicesCannotBeOpened),
                                  SENTENCE(AnUnknownEmulationIsRefused),
                                  SENTENCE(APortIsConnectedFromOpenToClose),
                                  SENTENCE(TheErrorOfAnUnreachablePrinterNamesItsPlace),
                                  SENTENCE(AFailedOpenReportsTheReasonOfTheChosenPrinter),
                                  SENTENCE(APortNameThatIsTooShortIsReported),
                                  SENTENCE(ANullPointerIsAUsageError),
                                  SENTENCE(AWriteOfMoreThanTwoGibibytesIsRefused),
                                  SENTENCE(BytesAreWrittenAndRead),
                                  SENTENCE(AReadOrWriteOnALostLinkFails),
                                  SENTENCE(AStatusReportsAnOpenCover),
                                  SENTENCE(TheOnlineStatusReportsAPrinterThatIsOnLine),
                                  SENTENCE(TheStatusOfASilentPrinterFails),
                                  SENTENCE(ACheckedBlockCanBeBegunAndEnded),
                                  SENTENCE(ACheckedBlockOnAnOffLinePrinterIsRefusedByItsResultCode),
                                  SENTENCE(ACheckedBlockReportsPaperInTheExitByItsResultCode),
                                  SENTENCE(ATransferObserverSeesEveryByteAndCanStopAnOperation),
                                  SENTENCE(ATransferObserverMayBeOfOneDirectionOnly),
                                  SENTENCE(EachThreadHasItsOwnLastError),
                                  SENTENCE(TheVersionIsTheVersionOfTheProject),
                                  {NULL, NULL}};
