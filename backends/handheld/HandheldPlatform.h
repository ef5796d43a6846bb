#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Platform.h"

/// The platform on the frameworks of the handheld device.
namespace quordalvane::handheld {

/// The platform of a program on the handheld device: the accessories that its accessory service
/// has connected, its run loops, its threads and its clock. An exception that a framework raises
/// reaches the caller as a `FrameworkError`.
///
///     setProcessPlatform(std::make_shared<handheld::HandheldPlatform>());
///     auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 10000, ZKEmulationESCPOS);
class HandheldPlatform final : public Platform {
 public:
  /// Asks nothing of the frameworks yet.
  HandheldPlatform();

  EAAccessoryManager& sharedAccessoryManager() override { return *accessories_; }
  UIDevice& currentDevice() override { return *device_; }
  Clock& clock() override { return *clock_; }

  /// The framework's loop of the calling thread. A slice of a loop that has nothing to serve lasts
  /// its time as well.
  NSRunLoop& currentRunLoop() override;

  /// A thread of the framework's. Its run loop has a source of its own, so that it waits where
  /// there is nothing to do, and takes routines until the body has ended.
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;

  bool isMainThread() override;
  void ignoreSigPipe() override;

 private:
  const std::unique_ptr<EAAccessoryManager> accessories_;
  const std::unique_ptr<UIDevice> device_;
  const std::unique_ptr<Clock> clock_;
};

}  // namespace quordalvane::handheld
