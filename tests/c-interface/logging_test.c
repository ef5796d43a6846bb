#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "Sentences.h"

typedef struct Journal {
  unsigned records;
  unsigned apiStarts;
  bool complete;
} Journal;

static void note(void* context, const QuorLogRecord* record) {
  Journal* journal = context;
  ++journal->records;
  journal->apiStarts += record->type == 0;
  journal->complete = journal->complete && record->time > 0 && record->thread > 0 &&
                      record->line > 0 && record->file[0] != '\0' && record->method[0] != '\0' &&
                      record->object != NULL && record->message != NULL;
}

static void exchangeAStatus(void) {
  QuorPort* port = openPortTo("virtual:", QUOR_EMULATION_LINE);
  QuorPrinterStatus_2 status = {0};
  EXPECT(quor_port_get_parsed_status(port, &status, 0) == QUOR_OK);
  done(port);
}

static void LogRecordsArePassedToTheFunctionUntilItIsRemoved(void) {
  Journal journal = {.complete = true};
  QuorLogSink* sink = NULL;
  REQUIRE(quor_log_add_function(note, &journal, &sink) == QUOR_OK);
  quor_log_set_logging(1);
  exchangeAStatus();
  EXPECT(quor_log_remove_sink(sink) == QUOR_OK);
  const unsigned records = journal.records;
  EXPECT(records > 10);
  EXPECT(journal.complete);
  exchangeAStatus();
  EXPECT(journal.records == records);
}

static void NothingIsLoggedUntilLoggingIsSwitchedOn(void) {
  Journal journal = {.complete = true};
  QuorLogSink* sink = NULL;
  REQUIRE(quor_log_add_function(note, &journal, &sink) == QUOR_OK);
  EXPECT(quor_log_is_logging() == 0);
  exchangeAStatus();
  quor_log_set_logging(1);
  EXPECT(quor_log_is_logging() == 1);
  quor_log_set_logging(0);
  EXPECT(quor_log_is_logging() == 0);
  EXPECT(quor_log_flush(60000) == QUOR_OK);
  EXPECT(quor_log_remove_sink(sink) == QUOR_OK);
  EXPECT(journal.records == 0);
}

static void countLooksAtTheConnection(void* context, const QuorLogRecord* record) {
  unsigned* looks = context;
  *looks += strstr(record->method, "isConnected") != NULL;
}

static void AFailedOpenLogsNoCheckOfTheConnection(void) {
  unsigned looks = 0;
  QuorLogSink* sink = NULL;
  REQUIRE(quor_log_add_function(countLooksAtTheConnection, &looks, &sink) == QUOR_OK);
  QuorPort* port = portTo("unix:/no/such/place", QUOR_EMULATION_LINE);
  quor_log_set_logging(1);
  EXPECT_FAILURE(quor_port_open(port), QUOR_FAILED, "cannot be reached");
  quor_log_set_logging(0);
  EXPECT(quor_log_remove_sink(sink) == QUOR_OK);
  EXPECT(looks == 0);
  done(port);
}

static void OnlyTargetLevelsAreLogged(void) {
  const int32_t levels[] = {3, 63};
  const int32_t unknown[] = {3, 64};
  Journal journal = {.complete = true};
  QuorLogSink* sink = NULL;
  EXPECT(quor_log_is_target_level(0) == 1 && quor_log_is_target_level(3) == 0);
  EXPECT(quor_log_set_target_levels(levels, 2) == QUOR_OK);
  EXPECT(quor_log_is_target_level(0) == 0 && quor_log_is_target_level(63) == 1);
  EXPECT_FAILURE(quor_log_set_target_levels(unknown, 2), QUOR_USAGE, "");
  EXPECT(quor_log_is_target_level(63) == 1);
  EXPECT_FAILURE(quor_log_set_target_levels(NULL, 1), QUOR_USAGE, "levels");
  EXPECT(quor_log_set_target_levels(NULL, 0) == QUOR_OK);
  EXPECT(quor_log_is_target_level(3) == 0);
  REQUIRE(quor_log_add_function(note, &journal, &sink) == QUOR_OK);
  quor_log_set_logging(1);
  exchangeAStatus();
  EXPECT(quor_log_flush(60000) == QUOR_OK);
  EXPECT(quor_log_remove_sink(sink) == QUOR_OK);
  EXPECT(journal.records == 0);
}

static void ALogFileHasOneJsonObjectPerLine(void) {
  const char* const path = "c_interface_log.jsonl";
  QuorLogSink* sink = NULL;
  remove(path);
  REQUIRE(quor_log_add_file(path, 0, 0, &sink) == QUOR_OK);
  quor_log_set_logging(1);
  exchangeAStatus();
  EXPECT(quor_log_flush(60000) == QUOR_OK);
  EXPECT(quor_log_remove_sink(sink) == QUOR_OK);
  FILE* file = fopen(path, "r");
  REQUIRE(file != NULL);
  char line[4096];
  unsigned lines = 0;
  while (fgets(line, sizeof line, file) != NULL) {
    EXPECT(line[0] == '{' && strcmp(line + strlen(line) - 2, "}\n") == 0);
    EXPECT(strstr(line, "\"method\":") != NULL);
    ++lines;
  }
  EXPECT(lines > 10);
  fclose(file);
  remove(path);
}

static void ALogFileThatCannotBeOpenedIsRefused(void) {
  QuorLogSink* sink = NULL;
  EXPECT_FAILURE(quor_log_add_file("/no/such/folder/log", 0, 0, &sink), QUOR_UNEXPECTED,
                 "/no/such/folder/log");
  EXPECT(sink == NULL);
  EXPECT_FAILURE(quor_log_add_file(NULL, 0, 0, &sink), QUOR_USAGE, "path");
  EXPECT_FAILURE(quor_log_add_function(NULL, NULL, &sink), QUOR_USAGE, "function");
  EXPECT_FAILURE(quor_log_add_standard_error(NULL), QUOR_USAGE, "sink");
}

static void LogRecordsCanBeWrittenToStandardError(void) {
  QuorLogSink* sink = NULL;
  QuorLogStatistics statistics = {0};
  REQUIRE(freopen("c_interface_stderr.txt", "w", stderr) != NULL);
  REQUIRE(quor_log_add_standard_error(&sink) == QUOR_OK);
  quor_log_set_logging(1);
  exchangeAStatus();
  EXPECT(quor_log_flush(60000) == QUOR_OK);
  EXPECT(quor_log_remove_sink(sink) == QUOR_OK);
  EXPECT(quor_log_statistics(&statistics) == QUOR_OK);
  EXPECT(statistics.handed_over > 10 && statistics.dropped == 0);
  EXPECT(ftell(stderr) > 0);
  remove("c_interface_stderr.txt");
}

/* For a sink that works until `open` is true. `flushed` is the result of a flush that the sink
 * itself calls. */
typedef struct Gate {
  pthread_mutex_t mutex;
  pthread_cond_t changed;
  bool entered;
  bool open;
  QuorCode flushed;
} Gate;

static void waitAtTheGate(void* context, const QuorLogRecord* record) {
  Gate* gate = context;
  (void)record;
  pthread_mutex_lock(&gate->mutex);
  gate->flushed = quor_log_flush(60000);
  gate->entered = true;
  pthread_cond_signal(&gate->changed);
  while (!gate->open) {
    pthread_cond_wait(&gate->changed, &gate->mutex);
  }
  pthread_mutex_unlock(&gate->mutex);
}

static void TheRemovalOfABusySinkIsReported(void) {
  Gate gate = {.mutex = PTHREAD_MUTEX_INITIALIZER, .changed = PTHREAD_COND_INITIALIZER};
  QuorLogSink* sink = NULL;
  REQUIRE(quor_log_add_function(waitAtTheGate, &gate, &sink) == QUOR_OK);
  quor_log_set_logging(1);
  exchangeAStatus();
  pthread_mutex_lock(&gate.mutex);
  while (!gate.entered) {
    pthread_cond_wait(&gate.changed, &gate.mutex);
  }
  pthread_mutex_unlock(&gate.mutex);
  EXPECT(gate.flushed == QUOR_FAILED);
  EXPECT(quor_log_flush(0) == QUOR_FAILED);
  EXPECT_FAILURE(quor_log_remove_sink(sink), QUOR_FAILED, "at work");
  pthread_mutex_lock(&gate.mutex);
  gate.open = true;
  pthread_cond_signal(&gate.changed);
  pthread_mutex_unlock(&gate.mutex);
  EXPECT(quor_log_flush(60000) == QUOR_OK);
}

static void TheLogQueueRefusesACapacityOfZeroOrAboveItsMaximum(void) {
  EXPECT_FAILURE(quor_log_set_queue_capacity(0), QUOR_USAGE, "1 to 1048576");
  EXPECT_FAILURE(quor_log_set_queue_capacity(1048577), QUOR_USAGE, "1 to 1048576");
  EXPECT_FAILURE(quor_log_set_queue_capacity(SIZE_MAX), QUOR_USAGE, "1 to 1048576");
  EXPECT(quor_log_set_queue_capacity(100) == QUOR_OK);
  EXPECT(quor_log_remove_sink(NULL) == QUOR_OK);
  EXPECT_FAILURE(quor_log_statistics(NULL), QUOR_USAGE, "statistics");
}

const Sentence loggingSentences[] = {SENTENCE(LogRecordsArePassedToTheFunctionUntilItIsRemoved),
                                     SENTENCE(NothingIsLoggedUntilLoggingIsSwitchedOn),
                                     SENTENCE(AFailedOpenLogsNoCheckOfTheConnection),
                                     SENTENCE(OnlyTargetLevelsAreLogged),
                                     SENTENCE(ALogFileHasOneJsonObjectPerLine),
                                     SENTENCE(ALogFileThatCannotBeOpenedIsRefused),
                                     SENTENCE(LogRecordsCanBeWrittenToStandardError),
                                     SENTENCE(TheRemovalOfABusySinkIsReported),
                                     SENTENCE(TheLogQueueRefusesACapacityOfZeroOrAboveItsMaximum),
                                     {NULL, NULL}};
