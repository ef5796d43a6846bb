#pragma once

#include <cstdint>
#include <functional>

#include "job/PortLink.h"

namespace quordalvane {

/// Hears out the answers that a printer still owes to an earlier job: asks `question` until two in
/// a row have one answer each, as `count` counts them. One alone could be answered by a stray byte.
/// The answers that are owed follow one another within a second. False if the printer leaves a
/// question unanswered for the port's time-out, or never falls silent.
bool hearOut(PortLink& link, ByteView question, const std::function<std::uint64_t()>& count);

}  // namespace quordalvane
