/* Prints a text and names the next step. Usage: print DEVICE TEXT */
#include <quordalvane/QuorIOPortC.h>
#include <stdio.h>
#include <string.h>

static int report(QuorPrintJob* job) {
  char reason[256] = "";
  char advice[256] = "";
  quor_print_job_reason(job, reason, sizeof reason, NULL);
  quor_print_job_advice(job, advice, sizeof advice, NULL);
  switch (quor_print_job_outcome(job)) {
    case QUOR_PRINTED:
      puts("printed: hand the receipt over");
      return 0;
    case QUOR_REFUSED:
      printf("refused: %s; %s\n", reason, advice);
      return 1;
    default:
      printf("unconfirmed: %s; %s\n", reason, advice);
      return 6;
  }
}

static int print(QuorPort* port, const char* text) {
  QuorPrintJob* job = NULL;
  int code = 1;
  if (quor_port_open(port) == QUOR_OK &&
      quor_print_job_create(port, QUOR_PROOF_AUTO, NULL, NULL, &job) == QUOR_OK &&
      quor_print_job_run(job, text, strlen(text)) == QUOR_OK) {
    code = report(job);
  } else {
    fprintf(stderr, "%s\n", quor_last_error());
  }
  quor_print_job_free(job);
  quor_port_close(port);
  return code;
}

int main(int argc, char** argv) {
  QuorPort* port = NULL;
  if (argc != 3) {
    fprintf(stderr, "usage: print DEVICE TEXT\n");
    return 2;
  }
  const char* const device = argv[1];
  if (quor_connect_devices(&device, 1) != QUOR_OK ||
      quor_port_create("BT:", NULL, 10000, QUOR_EMULATION_LINE, &port) != QUOR_OK) {
    fprintf(stderr, "%s\n", quor_last_error());
    return 1;
  }
  const int code = print(port, argv[2]);
  quor_port_free(port);
  return code;
}
