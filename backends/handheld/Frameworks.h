#pragma once

#include <functional>
#include <memory>

#include "platform/Platform.h"

// The parts of the platform that use a framework, one source in Objective-C++ each. This
// header keeps the frameworks out of the C++ beside them.

namespace quordalvane::handheld {

/// The accessories that the accessory service has connected.
std::unique_ptr<EAAccessoryManager> makeAccessoryManager();

/// The device that the program runs on.
std::unique_ptr<UIDevice> makeDevice();

/// The calling thread's loop, valid on that thread until it ends.
NSRunLoop& currentRunLoop();

/// A thread that will run `body`, not started yet.
std::shared_ptr<NSThread> makeThread(std::function<void()> body);

/// Whether the calling thread is the application's main thread.
bool isMainThread();

}  // namespace quordalvane::handheld
