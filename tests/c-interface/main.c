#include "Sentences.h"

extern const Sentence portSentences[];
extern const Sentence informationSentences[];
extern const Sentence inquirySentences[];
extern const Sentence jobSentences[];
extern const Sentence loggingSentences[];

int main(int argc, char** argv) {
  const Sentence* const tables[] = {portSentences, informationSentences, inquirySentences,
                                    jobSentences, loggingSentences};
  return proveSentence(argc, argv, tables, sizeof tables / sizeof *tables);
}
