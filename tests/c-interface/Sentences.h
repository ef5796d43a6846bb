#pragma once

#include <quordalvane/QuorIOPortC.h>
#include <stdbool.h>

/* The tests of the C interface. Each test is a function whose name states what it proves, and runs
 * in its own process. */

typedef struct Sentence {
  const char* name;
  void (*prove)(void);
} Sentence;

#define SENTENCE(name) \
  { #name, name }

/* Runs the test that the only argument names, and returns the exit status. The test is in one of
 * `count` tables, each of which ends with an empty Sentence. If a test is missing from the table of
 * its file, the file does not compile, because the function is unused. */
int proveSentence(int argc, char** argv, const Sentence* const* tables, size_t count);

/* Counts and reports a failure unless the condition holds. */
#define EXPECT(condition) expectThat((condition), #condition, __FILE__, __LINE__)
void expectThat(bool holds, const char* condition, const char* file, int line);

/* Reports a failure and ends the program unless the condition holds. */
#define REQUIRE(condition) requireThat((condition), #condition, __FILE__, __LINE__)
void requireThat(bool holds, const char* condition, const char* file, int line);

/* Reports a failure unless the call fails with `code` and its error text contains `words`. */
#define EXPECT_FAILURE(call, code, words) \
  expectFailure((call), (code), (words), #call, __FILE__, __LINE__)
void expectFailure(QuorCode answer, QuorCode code, const char* words, const char* call,
                   const char* file, int line);

/* Returns a port to the device that `spec` describes. The port's time-out is 3 s. */
QuorPort* portTo(const char* spec, int32_t emulation);

/* Makes a port by `portTo`, opens it and returns it. */
QuorPort* openPortTo(const char* spec, int32_t emulation);

/* Closes and frees the port. */
void done(QuorPort* port);
