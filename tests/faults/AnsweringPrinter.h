#pragma once

#include "tests/support/Script.h"

namespace quordalvane::test {

/// A request that some printer answers, and the whole answer.
struct Exchange {
  Bytes request;
  Bytes reply;
};

/// The requests of a port that are answered, with their answers: the requests to a printer, in both
/// emulations, and the request to the Bluetooth module.
std::vector<Exchange> exchanges();

/// A printer that answers everything at once, so that a run without a fault succeeds.
Script answeringPrinter();

}  // namespace quordalvane::test
