#include "Sentences.h"

extern const Sentence journalSentences[];
extern const Sentence namedJobSentences[];
extern const Sentence turnSentences[];

int main(int argc, char** argv) {
  const Sentence* const tables[] = {journalSentences, namedJobSentences, turnSentences};
  return proveSentence(argc, argv, tables, sizeof tables / sizeof *tables);
}
