#pragma once

#include <functional>
#include <memory>

#include "platform/Platform.h"

// Declares the parts of the platform that use frameworks. Each part is an Objective-C++ source.
// C++ sources include this header, so they need no framework's header.

namespace quordalvane::handheld {

/// Returns a manager that lists the accessories now connected to the device.
std::unique_ptr<EAAccessoryManager> makeAccessoryManager();

/// Returns the device that the program runs on.
std::unique_ptr<UIDevice> makeDevice();

/// Returns the run loop of the calling thread. The loop is valid only on this thread, until the
/// thread ends.
NSRunLoop& currentRunLoop();

/// Returns a thread, not started yet, that will run `body`.
std::shared_ptr<NSThread> makeThread(std::function<void()> body);

/// Returns whether the calling thread is the application's main thread.
bool isMainThread();

}  // namespace quordalvane::handheld
