#pragma once

#include "bench/Row.h"

namespace quordalvane::bench {

// What is measured, each function on its own and in any order. See docs/performance.md for what the
// rows mean.

Rows lineStatusOverTcp();    // B1
Rows escposStatusOverTcp();  // B2
Rows lineStatusElsewhere();  // B3
Rows printData();            // B4
Rows reading();              // B5
Rows logStatementOff();      // B6
Rows logStatementOn();       // B7
Rows stalledSink();          // B8
Rows idlePorts();            // B9
Rows lateReplies();          // B10
Rows silentDevice();         // B11
Rows openAndClose();         // B12
Rows virtualTime();          // B13
Rows systemCalls();          // B14

GrowthTable growingPorts();
GrowthTable growingJobs();
GrowthTable growingLoggers();

}  // namespace quordalvane::bench
