#pragma once

#include <memory>

#include "backends/handheld/Objects.h"
#include "platform/NSStream.h"

// For Objective-C++ alone: the streams of a session over the framework's own.

namespace quordalvane::handheld {

/// The framework's `stream`, never nil, as the port reads from it.
std::shared_ptr<NSInputStream> inputOver(::NSInputStream* stream);

/// The framework's `stream`, never nil, as the port writes to it.
std::shared_ptr<NSOutputStream> outputOver(::NSOutputStream* stream);

}  // namespace quordalvane::handheld
