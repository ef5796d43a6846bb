#pragma once

#include <cstdint>
#include <functional>

#include "job/PortLink.h"

namespace quordalvane {

/// Waits until the printer has sent all answers to the queries of earlier jobs. Sends `question`
/// again until the printer has answered two questions in a row exactly once each; `count` returns
/// the number of answers so far. One question is not enough, because a stray byte could be taken
/// for the answer to it. After each answer, `hearOut` waits one second for further answers. Returns
/// false if the printer does not answer within the port's time-out, if it still sends answers after
/// twice that time-out plus five seconds, or if six questions were not enough.
bool hearOut(PortLink& link, ByteView question, const std::function<std::uint64_t()>& count);

}  // namespace quordalvane
