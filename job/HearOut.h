#pragma once

#include <cstdint>
#include <functional>

#include "job/PortLink.h"

namespace quordalvane {

/// Waits until the printer has sent all answers that it still owes to an earlier job. Repeats
/// `question` until it was answered exactly once in two consecutive rounds; `count` returns the
/// number of answers so far. One such round is not enough, because a stray byte could be taken for
/// the answer. After each answer it waits one second for another. Returns false if the printer does
/// not answer within the port's time-out, or still sends answers after twice that and five seconds,
/// and after six questions.
bool hearOut(PortLink& link, ByteView question, const std::function<std::uint64_t()>& count);

}  // namespace quordalvane
