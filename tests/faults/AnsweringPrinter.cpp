#include "tests/faults/AnsweringPrinter.h"

namespace quordalvane::test {

std::vector<Exchange> exchanges() {
  return {
      {bytes("1b 06 01"), bytes("89 01 00 00 00 00 00 00 05")},
      {bytes("17 17 1b 1d 03 04 00 00 1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01"),
       bytes("89 01 00 00 00 00 02 00 05")},
      {bytes("10 04 01"), bytes("12")},
      {bytes("10 04 02"), bytes("12")},
      {bytes("10 04 04"), bytes("12")},
      {bytes("1b 1d 03 01 00 00"), bytes("1b 1d 03 01 00 00 01 00")},
      {bytes("1b 23 2a 0a 00"), bytes("1b 23 2a 56 31 2e 30 0a 00")},
      {bytes("1d 49 41"), bytes("5f 56 31 2e 30 00")},
      {bytes("1b 23 2c 31 0a 00"), bytes("1b 23 2c 31 45 02 0a")},
      {bytes("1b 23 2c 32 0a 00"), bytes("1b 23 2c 32 00 00 0a")},
      {ascii("AT*AILBA?\r"), ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n")},
  };
}

Script answeringPrinter() {
  Script script;
  for (Exchange& exchange : exchanges()) {
    script.wheneverAsked(std::move(exchange.request), {{std::move(exchange.reply)}});
  }
  script.lostAfterCalls = 1000;  // ends the loops that have no limit of their own
  return script;
}

}  // namespace quordalvane::test
