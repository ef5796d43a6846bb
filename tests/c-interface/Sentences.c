#include "Sentences.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

void expectThat(bool holds, const char* condition, const char* file, int line) {
  if (!holds) {
    fprintf(stderr, "%s:%d: expected: %s (last error: %s)\n", file, line, condition,
            quor_last_error());
    ++failures;
  }
}

void requireThat(bool holds, const char* condition, const char* file, int line) {
  expectThat(holds, condition, file, line);
  if (!holds) {
    exit(EXIT_FAILURE);
  }
}

void expectFailure(QuorCode answer, QuorCode code, const char* words, const char* call,
                   const char* file, int line) {
  if (answer != code || strstr(quor_last_error(), words) == NULL) {
    fprintf(stderr, "%s:%d: expected: %s is %d, \"%s\"; it is %d, \"%s\"\n", file, line, call, code,
            words, answer, quor_last_error());
    ++failures;
  }
}

QuorPort* portTo(const char* spec, int32_t emulation) {
  QuorPort* port = NULL;
  REQUIRE(quor_connect_devices(&spec, 1) == QUOR_OK);
  REQUIRE(quor_port_create("BT:", "", 3000, emulation, &port) == QUOR_OK);
  return port;
}

QuorPort* openPortTo(const char* spec, int32_t emulation) {
  QuorPort* port = portTo(spec, emulation);
  REQUIRE(quor_port_open(port) == QUOR_OK);
  return port;
}

void done(QuorPort* port) {
  EXPECT(quor_port_close(port) == QUOR_OK);
  quor_port_free(port);
}

int proveSentence(int argc, char** argv, const Sentence* const* tables, size_t count) {
  for (size_t i = 0; argc == 2 && i < count; ++i) {
    for (const Sentence* sentence = tables[i]; sentence->name != NULL; ++sentence) {
      if (strcmp(sentence->name, argv[1]) == 0) {
        sentence->prove();
        return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
      }
    }
  }
  fprintf(stderr, "usage: %s SENTENCE, one of those in the sources\n", argv[0]);
  return EXIT_FAILURE;
}
