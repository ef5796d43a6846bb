#pragma once

#include <quordalvane/QuorIOPortC.h>
#include <stdbool.h>

/* The tests of the C interface: each a function whose name is the sentence that it proves, run in a
 * process of its own. */

typedef struct Sentence {
  const char* name;
  void (*prove)(void);
} Sentence;

#define SENTENCE(name) \
  { #name, name }

/* Proves the sentence that the only argument names, one of those in `count` tables, and returns the
 * exit status. A function that is missing from its file's table is unused, and does not compile.
 * Each table ends in an empty sentence. */
int proveSentence(int argc, char** argv, const Sentence* const* tables, size_t count);

/* Counts and reports a failure unless the condition holds. */
#define EXPECT(condition) expectThat((condition), #condition, __FILE__, __LINE__)
void expectThat(bool holds, const char* condition, const char* file, int line);

/* The same, and ends the program. */
#define REQUIRE(condition) requireThat((condition), #condition, __FILE__, __LINE__)
void requireThat(bool holds, const char* condition, const char* file, int line);

/* A failed call: its code, and that its reason holds the words. */
#define EXPECT_FAILURE(call, code, words) \
  expectFailure((call), (code), (words), #call, __FILE__, __LINE__)
void expectFailure(QuorCode answer, QuorCode code, const char* words, const char* call,
                   const char* file, int line);

/* A port of the given emulation to the device that the text describes, with a time-out of 3 s. */
QuorPort* portTo(const char* spec, int32_t emulation);

/* The same, open. */
QuorPort* openPortTo(const char* spec, int32_t emulation);

/* Closes and frees. */
void done(QuorPort* port);
