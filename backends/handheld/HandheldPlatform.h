#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Platform.h"

/// The platform that uses the frameworks of the handheld device.
namespace quordalvane::handheld {

/// The platform of a program on the handheld device. It offers the accessories that the accessory
/// service has connected, and the device's run loops, threads and clock. If a framework raises an
/// exception, the caller receives it as a `FrameworkError`. For example:
///
///     setProcessPlatform(std::make_shared<handheld::HandheldPlatform>());
///     auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 10000, ZKEmulationESCPOS);
class HandheldPlatform final : public Platform {
 public:
  /// Creates the platform without any call to the frameworks.
  HandheldPlatform();

  EAAccessoryManager& sharedAccessoryManager() override { return *accessories_; }
  UIDevice& currentDevice() override { return *device_; }
  Clock& clock() override { return *clock_; }

  /// Returns the framework's run loop of the calling thread. Running the loop takes the whole given
  /// time, even if the loop has nothing to do.
  NSRunLoop& currentRunLoop() override;

  /// Returns a thread of the framework. Other threads can run routines on this thread until `body`
  /// has ended (see `NSThread::performAndWait`). The thread's run loop has an event source of its
  /// own, because a loop without an event source returns immediately.
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;

  bool isMainThread() override;
  void ignoreSigPipe() override;

 private:
  const std::unique_ptr<EAAccessoryManager> accessories_;
  const std::unique_ptr<UIDevice> device_;
  const std::unique_ptr<Clock> clock_;
};

}  // namespace quordalvane::handheld
