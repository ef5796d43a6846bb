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

/* Runs the test that the only argument names, which is in one of `count` tables, and returns the
 * exit status. A function that is missing from the table of its file is unused, and does not
 * compile. Each table ends with an empty Sentence. */
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

/* A port of the given emulation to the device that the text describes, with a time-out of 3 s. */
QuorPort* portTo(const char* spec, int32_t emulation);

/* The port that `portTo` makes, after it was opened. */
QuorPort* openPortTo(const char* spec, int32_t emulation);

/* Closes and frees the port. */
void done(QuorPort* port);
