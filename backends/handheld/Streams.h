#pragma once

#include <memory>

#include "backends/handheld/Objects.h"
#include "platform/NSStream.h"

// For Objective-C++ only. Declares the streams of a session, which use the framework's own streams.

namespace quordalvane::handheld {

/// Returns an input stream for the port. It reads from the framework's `stream`, which must not be
/// nil.
std::shared_ptr<NSInputStream> inputOver(::NSInputStream* stream);

/// Returns an output stream for the port. It writes to the framework's `stream`, which must not be
/// nil.
std::shared_ptr<NSOutputStream> outputOver(::NSOutputStream* stream);

}  // namespace quordalvane::handheld
