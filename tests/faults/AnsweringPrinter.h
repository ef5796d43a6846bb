#pragma once

#include "tests/support/Script.h"

namespace quordalvane::test {

/// A request that some printer answers, and the whole answer.
struct Exchange {
  Bytes request;
  Bytes reply;
};

/// Every request of the port that is answered, in both emulations and by the Bluetooth module.
std::vector<Exchange> exchanges();

/// A printer that answers everything at once, so that a run without a fault succeeds.
Script answeringPrinter();

}  // namespace quordalvane::test
