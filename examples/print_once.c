/* Prints a text under a name. The program may be started again and again, and may be killed at any
 * moment: it prints the text only once. Usage: print_once DEVICE NAME TEXT [JOURNAL] */
#include <quordalvane/QuorJournalC.h>
#include <stdio.h>
#include <string.h>

static void wait_for_turn(void* context) {
  (void)context;
  fprintf(stderr, "another job is on this printer: waiting\n");
}

/* If the printer is busy for too long or cannot be reached, nothing was sent: try again later. */
static QuorCode run(const char* device, QuorPort* port, QuorNamedJob* named, QuorPrintJob* job) {
  QuorTurn* turn = NULL;
  if (!quor_named_job_is_answered(named) &&
      (quor_turn_take(device, 10000, wait_for_turn, NULL, &turn) < 0 || quor_port_open(port) < 0)) {
    fprintf(stderr, "%s\n", quor_last_error());
    quor_named_job_refuse(named, quor_last_error());
    quor_turn_free(turn);
    return QUOR_FAILED;
  }
  const QuorCode code = quor_named_job_run(named, job);
  quor_port_close(port);
  quor_turn_free(turn);
  return code;
}

static int tell(QuorNamedJob* named, QuorPrintJob* job) {
  char text[256] = "";
  switch (quor_print_job_outcome(job)) {
    case QUOR_PRINTED:
      puts(quor_named_job_is_repeated(named) ? "printed before" : "printed");
      return 0;
    case QUOR_REFUSED:
      quor_print_job_reason(job, text, sizeof text, NULL);
      printf("refused: %s\n", text);
      return 1;
    default:
      quor_print_job_reason(job, text, sizeof text, NULL);
      printf("call the staff: %s\n", text);
      return 6;
  }
}

static int print_once(QuorJournal* journal, QuorPort* port, const QuorNamedJobRequest* request,
                      const char* text) {
  QuorNamedJob* named = NULL;
  QuorPrintJob* job = NULL;
  int status = 1;
  if (quor_print_job_create(port, 1, NULL, NULL, &job) != QUOR_OK ||
      quor_named_job_create(journal, request, text, strlen(text), &named) != QUOR_OK) {
    fprintf(stderr, "%s\n", quor_last_error());
  } else if (run(request->device, port, named, job) == QUOR_OK) {
    status = tell(named, job);
  }
  quor_named_job_free(named);
  quor_print_job_free(job);
  return status;
}

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    fprintf(stderr, "usage: print_once DEVICE NAME TEXT [JOURNAL]\n");
    return 2;
  }
  const char* const device = argv[1];
  const QuorNamedJobRequest request = {.name = argv[2], .device = device, .timeout = 10000};
  QuorJournal* journal = NULL;
  QuorPort* port = NULL;
  int status = 2;
  if (quor_connect_devices(&device, 1) == QUOR_OK &&
      quor_port_create("BT:", NULL, 10000, QUOR_EMULATION_LINE, &port) == QUOR_OK &&
      quor_journal_open(argc == 5 ? argv[4] : NULL, &journal) == QUOR_OK) {
    status = print_once(journal, port, &request, argv[3]);
  } else {
    fprintf(stderr, "%s\n", quor_last_error());
  }
  quor_journal_free(journal);
  quor_port_free(port);
  return status;
}
