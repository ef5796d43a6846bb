#include "JournalInFolder.h"
#include "Sentences.h"

static void countWaits(void* context) {
  ++*(unsigned*)context;
}

static void AJobWaitsForItsTurnOnThePrinter(void) {
  QuorTurn* first = NULL;
  QuorTurn* second = NULL;
  unsigned waits = 0;
  REQUIRE(quor_turn_take("tcp:192.0.2.10:9100", 0, countWaits, &waits, &first) == QUOR_OK);
  EXPECT(waits == 0);
  EXPECT_FAILURE(quor_turn_take("tcp:192.0.2.10:9100,name=Bar", 20, countWaits, &waits, &second),
                 QUOR_FAILED, "another job");
  EXPECT(waits == 1 && second == NULL);
  EXPECT(quor_turn_take("tcp:192.0.2.11:9100", 0, NULL, NULL, &second) == QUOR_OK);
  quor_turn_free(second);
  quor_turn_free(first);
  EXPECT(quor_turn_take("tcp:192.0.2.10:9100", 0, NULL, NULL, &second) == QUOR_OK);
  quor_turn_free(second);
  quor_turn_free(NULL);
}

static void NoTurnIsNeededForTheVirtualPrinterOfThisProcess(void) {
  QuorTurn* turn = NULL;
  EXPECT(quor_turn_take("virtual:", 0, NULL, NULL, &turn) == QUOR_NONE);
  EXPECT(turn == NULL);
}

static void ATurnNeedsADevice(void) {
  QuorTurn* turn = NULL;
  EXPECT_FAILURE(quor_turn_take("pigeon:", 0, NULL, NULL, &turn), QUOR_USAGE, "pigeon");
  EXPECT_FAILURE(quor_turn_take(NULL, 0, NULL, NULL, &turn), QUOR_USAGE, "device");
  EXPECT_FAILURE(quor_turn_take("virtual:", 0, NULL, NULL, NULL), QUOR_USAGE,
                 "pointer that receives");
}

const Sentence turnSentences[] = {
    SENTENCE(AJobWaitsForItsTurnOnThePrinter),
    SENTENCE(NoTurnIsNeededForTheVirtualPrinterOfThisProcess),
    SENTENCE(ATurnNeedsADevice),
    {NULL, NULL},
};
