#pragma once

#include <cstdint>
#include <functional>

#include "job/PortLink.h"

namespace quordalvane {

/// Waits until the printer has sent all answers to the queries of earlier jobs. Sends `question`
/// repeatedly. After each answer, waits one second for further answers. Returns true when exactly
/// one answer has arrived for a question, and exactly one for the next question. One question is
/// not enough, because a stray byte could look like its answer. `count` must return the number of
/// answers that have arrived so far. Returns false if the link does not take a question, if the
/// printer does not answer within the port's time-out, if it still sends answers after twice that
/// time-out plus five seconds, or after six questions without success.
bool hearOut(PortLink& link, ByteView question, const std::function<std::uint64_t()>& count);

}  // namespace quordalvane
