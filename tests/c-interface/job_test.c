#include <pthread.h>
#include <string.h>

#include "Sentences.h"

static const char receipt[] = "2 Espresso 3.60\n";
static const size_t receiptSize = sizeof receipt - 1;

static QuorPrintJob* jobOn(QuorPort* port) {
  QuorPrintJob* job = NULL;
  REQUIRE(quor_print_job_create(port, QUOR_PROOF_AUTO, NULL, NULL, &job) == QUOR_OK);
  return job;
}

static void AJobOnPaperIsReportedAsPrinted(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  QuorPrinterStatus_2 status = {0};
  char text[4] = "abc";
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_PRINTED);
  EXPECT(quor_print_job_obstacle(job) == QUOR_OBSTACLE_NONE);
  EXPECT(quor_print_job_result_code(job) == QUOR_RESULT_SUCCESS);
  EXPECT(quor_print_job_bytes_total(job) == receiptSize);
  EXPECT(quor_print_job_bytes_accepted(job) == receiptSize);
  EXPECT(quor_print_job_status(job, &status) == QUOR_OK && status.offline == 0);
  EXPECT(quor_print_job_reason(job, text, sizeof text, NULL) == QUOR_OK && text[0] == '\0');
  EXPECT(quor_print_job_advice(job, text, sizeof text, NULL) == QUOR_OK && text[0] == '\0');
  quor_print_job_free(job);
  quor_print_job_free(NULL);
  done(port);
}

static void AJobCanRunOnlyOnce(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  EXPECT(quor_print_job_outcome(job) == QUOR_REFUSED);
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT_FAILURE(quor_print_job_run(job, receipt, receiptSize), QUOR_USAGE, "once");
  EXPECT(quor_print_job_outcome(job) == QUOR_PRINTED);
  quor_print_job_free(job);
  done(port);
}

static void AJobWithoutAProofIsUnconfirmed(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = NULL;
  QuorPrinterStatus_2 status = {0};
  REQUIRE(quor_print_job_create(port, QUOR_PROOF_NONE, NULL, NULL, &job) == QUOR_OK);
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_UNCONFIRMED);
  EXPECT(quor_print_job_obstacle(job) == QUOR_OBSTACLE_NO_PROOF);
  EXPECT(quor_print_job_bytes_accepted(job) == receiptSize);
  EXPECT(quor_print_job_status(job, &status) == QUOR_NONE);
  quor_print_job_free(job);
  done(port);
}

static void AJobIsRefusedWithReasonAndAdviceIfTheCoverIsOpen(void) {
  QuorPort* port = openPortTo("virtual:,coverOpen=true", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  char text[256] = "";
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_REFUSED);
  EXPECT(quor_print_job_obstacle(job) == QUOR_OBSTACLE_PRINTER_NOT_READY);
  EXPECT(quor_print_job_bytes_accepted(job) == 0);
  EXPECT(quor_print_job_reason(job, text, sizeof text, NULL) == QUOR_OK);
  EXPECT(strstr(text, "cover open") != NULL);
  EXPECT(quor_print_job_advice(job, text, sizeof text, NULL) == QUOR_OK);
  EXPECT(strstr(text, "sending it again is safe") != NULL);
  quor_print_job_free(job);
  done(port);
}

static void AJobOnALostLinkIsUnconfirmedWithItsByteCount(void) {
  QuorPort* port = openPortTo("virtual:,cut-after-in=300", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  static char data[1000];
  memset(data, 'a', sizeof data);
  EXPECT(quor_print_job_run(job, data, sizeof data) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_UNCONFIRMED);
  EXPECT(quor_print_job_obstacle(job) == QUOR_OBSTACLE_LINK_LOST);
  EXPECT(quor_print_job_bytes_total(job) == sizeof data);
  EXPECT(quor_print_job_bytes_accepted(job) > 0);
  EXPECT(quor_print_job_bytes_accepted(job) < 300);
  quor_print_job_free(job);
  done(port);
}

static void AJobReportsWhichProofWasUsed(void) {
  static const struct {
    const char* device;
    int32_t emulation;
    int32_t chosen;
    int32_t used;
  } rows[] = {
      {"virtual:", QUOR_EMULATION_LINE, QUOR_PROOF_AUTO, QUOR_PROOF_BLOCK},
      {"virtual:proofs=in-order", QUOR_EMULATION_ESCPOS, QUOR_PROOF_AUTO, QUOR_PROOF_IN_ORDER},
      {"virtual:", QUOR_EMULATION_ESCPOS, QUOR_PROOF_PROCESS_ID, QUOR_PROOF_PROCESS_ID},
      {"virtual:,proof=process-id", QUOR_EMULATION_ESCPOS, QUOR_PROOF_AUTO, QUOR_PROOF_PROCESS_ID},
      {"virtual:,proof=process-id", QUOR_EMULATION_ESCPOS, QUOR_PROOF_BLOCK, QUOR_PROOF_BLOCK},
  };
  for (size_t i = 0; i < sizeof rows / sizeof rows[0]; ++i) {
    QuorPort* port = openPortTo(rows[i].device, rows[i].emulation);
    QuorPrintJob* job = NULL;
    REQUIRE(quor_print_job_create(port, rows[i].chosen, NULL, NULL, &job) == QUOR_OK);
    EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
    EXPECT(quor_print_job_outcome(job) == QUOR_PRINTED);
    EXPECT(quor_print_job_proof(job) == rows[i].used);
    quor_print_job_free(job);
    done(port);
  }
}

static void AnUnknownProofIsRefused(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = NULL;
  EXPECT_FAILURE(quor_print_job_create(port, 5, NULL, NULL, &job), QUOR_USAGE,
                 "no kind of proof has the number 5");
  EXPECT(job == NULL);
  done(port);
}

typedef struct Waits {
  QuorPrintJob* job;
  bool hasWaited;
} Waits;

static void noteWait(void* context, uint64_t accepted, uint64_t total) {
  Waits* waits = context;
  char text[64] = "";
  (void)accepted;
  (void)total;
  EXPECT(quor_print_job_waits_for(waits->job, text, sizeof text, NULL) == QUOR_OK);
  waits->hasWaited = waits->hasWaited || strcmp(text, "cover open") == 0;
}

static void ProgressNamesTheCauseOfAPause(void) {
  QuorPort* port = openPortTo("virtual:speed=40,at=300:coverOpen=true,at=2500:coverOpen=false",
                              QUOR_EMULATION_ESCPOS);
  Waits waits = {NULL, false};
  REQUIRE(quor_print_job_create(port, QUOR_PROOF_PROCESS_ID, noteWait, &waits, &waits.job) ==
          QUOR_OK);
  EXPECT(quor_print_job_run(waits.job, receipt, receiptSize) == QUOR_OK);
  EXPECT(quor_print_job_outcome(waits.job) == QUOR_PRINTED);
  EXPECT(waits.hasWaited);
  quor_print_job_free(waits.job);
  done(port);
}

typedef struct Steps {
  unsigned calls;
  uint64_t accepted;
  uint64_t total;
} Steps;

static void note(void* context, uint64_t accepted, uint64_t total) {
  Steps* steps = context;
  EXPECT(accepted >= steps->accepted);
  ++steps->calls;
  steps->accepted = accepted;
  steps->total = total;
}

static void ProgressReachesTheSizeOfTheJob(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = NULL;
  Steps steps = {0, 0, 0};
  REQUIRE(quor_print_job_create(port, QUOR_PROOF_AUTO, note, &steps, &job) == QUOR_OK);
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(steps.calls >= 1);
  EXPECT(steps.accepted == receiptSize && steps.total == receiptSize);
  quor_print_job_free(job);
  done(port);
}

/* Lets another thread cancel the job after its first bytes were accepted. */
typedef struct Canceller {
  QuorPrintJob* job;
  pthread_t thread;
  bool started;
} Canceller;

static void* cancel(void* job) {
  quor_print_job_cancel(job);
  return NULL;
}

static void cancelFromAnotherThread(void* context, uint64_t accepted, uint64_t total) {
  Canceller* canceller = context;
  (void)total;
  if (accepted > 0 && !canceller->started) {
    canceller->started = pthread_create(&canceller->thread, NULL, cancel, canceller->job) == 0;
  }
}

static void AJobCanBeCancelledFromAnotherThread(void) {
  QuorPort* port = openPortTo("virtual:,speed=100,buffer=512", QUOR_EMULATION_LINE);
  Canceller canceller = {.job = NULL, .started = false};
  static char data[100000];
  memset(data, '\n', sizeof data);
  REQUIRE(quor_print_job_create(port, QUOR_PROOF_AUTO, cancelFromAnotherThread, &canceller,
                                &canceller.job) == QUOR_OK);
  EXPECT(quor_print_job_run(canceller.job, data, sizeof data) == QUOR_OK);
  REQUIRE(canceller.started);
  pthread_join(canceller.thread, NULL);
  EXPECT(quor_print_job_outcome(canceller.job) == QUOR_UNCONFIRMED);
  EXPECT(quor_print_job_obstacle(canceller.job) == QUOR_OBSTACLE_CANCELLED);
  EXPECT(quor_print_job_bytes_accepted(canceller.job) < sizeof data);
  EXPECT(quor_port_is_connected(port) == 0);
  quor_print_job_free(canceller.job);
  done(port);
}

static void AJobCancelledBeforeItsBeginningSendsNothing(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  quor_print_job_cancel(job);
  quor_print_job_cancel(NULL);
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_REFUSED);
  EXPECT(quor_print_job_obstacle(job) == QUOR_OBSTACLE_CANCELLED);
  quor_print_job_free(job);
  done(port);
}

static void AJobCanRunAfterThePortHandleIsFreed(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  quor_port_free(port);
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_PRINTED);
  quor_print_job_free(job);
}

static int32_t countWrite(void* context, size_t count) {
  unsigned* calls = context;
  (void)count;
  return (int32_t)++ * calls;
}

static int32_t countRead(void* context, const uint8_t* bytes, size_t count) {
  (void)bytes;
  return countWrite(context, count);
}

static void AJobDoesNotCallTheTransferObserverOfAFreedPort(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  unsigned calls = 0;
  EXPECT(quor_port_set_transfer_observer(port, countWrite, countRead, &calls) == QUOR_OK);
  quor_port_free(port);
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT(calls == 0);
  quor_print_job_free(job);
}

static void TheStatusOfAJobNeedsAPointer(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrintJob* job = jobOn(port);
  EXPECT_FAILURE(quor_print_job_status(job, NULL), QUOR_USAGE, "status");
  EXPECT(quor_print_job_run(job, receipt, receiptSize) == QUOR_OK);
  EXPECT_FAILURE(quor_print_job_status(job, NULL), QUOR_USAGE, "status");
  quor_print_job_free(job);
  done(port);
}

static void AJobNeedsAPortAndItsData(void) {
  QuorPrintJob* job = NULL;
  EXPECT_FAILURE(quor_print_job_create(NULL, QUOR_PROOF_AUTO, NULL, NULL, &job), QUOR_USAGE,
                 "port");
  EXPECT(job == NULL);
  EXPECT_FAILURE(quor_print_job_run(NULL, receipt, receiptSize), QUOR_USAGE, "job");
  EXPECT(quor_print_job_bytes_total(NULL) == 0);
  QuorPort* port = portTo("virtual:", QUOR_EMULATION_LINE);
  job = jobOn(port);
  EXPECT_FAILURE(quor_print_job_run(job, NULL, 1), QUOR_USAGE, "data");
  EXPECT(quor_print_job_run(job, NULL, 0) == QUOR_OK);
  EXPECT(quor_print_job_outcome(job) == QUOR_REFUSED);
  quor_print_job_free(job);
  done(port);
}

const Sentence jobSentences[] = {SENTENCE(AJobOnPaperIsReportedAsPrinted),
                                 SENTENCE(AJobCanRunOnlyOnce),
                                 SENTENCE(AJobWithoutAProofIsUnconfirmed),
                                 SENTENCE(AJobIsRefusedWithReasonAndAdviceIfTheCoverIsOpen),
                                 SENTENCE(AJobOnALostLinkIsUnconfirmedWithItsByteCount),
                                 SENTENCE(AJobReportsWhichProofWasUsed),
                                 SENTENCE(AnUnknownProofIsRefused),
                                 SENTENCE(ProgressNamesTheCauseOfAPause),
                                 SENTENCE(ProgressReachesTheSizeOfTheJob),
                                 SENTENCE(AJobCanBeCancelledFromAnotherThread),
                                 SENTENCE(AJobCancelledBeforeItsBeginningSendsNothing),
                                 SENTENCE(AJobCanRunAfterThePortHandleIsFreed),
                                 SENTENCE(AJobDoesNotCallTheTransferObserverOfAFreedPort),
                                 SENTENCE(TheStatusOfAJobNeedsAPointer),
                                 SENTENCE(AJobNeedsAPortAndItsData),
                                 {NULL, NULL}};
