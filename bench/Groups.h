#pragma once

#include "bench/Row.h"

namespace quordalvane::bench {

// Each function measures and returns one group of the report's rows. One function can be called
// without the others, and they can be called in any order. docs/performance.md explains the rows.

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
Rows journal();              // B19
Rows confirmedReceipts();    // B15, B16
Rows wholeCommands();        // B17
Rows signsOfSlowPrinters();  // B18
Rows receiptPictures();      // B20
Rows longPage();             // B21

GrowthTable growingPorts();
GrowthTable growingJobs();
GrowthTable growingLoggers();

}  // namespace quordalvane::bench
