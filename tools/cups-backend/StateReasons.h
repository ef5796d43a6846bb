#pragma once

#include <set>
#include <string>

#include <quordalvane/QuorIOPort.h>

namespace quordalvane::cups {

/// The print system's keywords for the state of a printer.
using StateReasons = std::set<std::string>;

/// The printer cannot be reached or does not answer.
inline const StateReasons outOfReach = {"offline-report"};

/// Nobody knows whether the last job is on paper.
inline const StateReasons unconfirmedJob = {"quor-unconfirmed-warning"};

/// Returns the keywords for the conditions that `status` reports.
StateReasons reasonsIn(const QuorPrinterStatus_2& status);

/// Returns all keywords that this back end can ever set.
const StateReasons& everyReason();

}  // namespace quordalvane::cups
