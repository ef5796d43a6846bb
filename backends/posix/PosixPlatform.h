#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "backends/posix/PosixClock.h"
#include "platform/Platform.h"

/// What is built on the calls of this system.
namespace quordalvane::posix {

/// The accessories that were handed in, in that order. None ever goes away.
class QUOR_EXPORT AttachedAccessories final : public EAAccessoryManager {
 public:
  /// Begins with `accessories`, none of them null.
  explicit AttachedAccessories(std::vector<std::shared_ptr<EAAccessory>> accessories);

  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override;

  /// Adds `accessory`, never null, behind the others.
  void attach(std::shared_ptr<EAAccessory> accessory);

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<EAAccessory>> accessories_;
};

/// The device is this machine; its version is the kernel's release.
class QUOR_EXPORT ThisMachine final : public UIDevice {
 public:
  std::string systemVersion() override;
};

/// The platform of a program on this system: real time, real threads, and the accessories that it
/// is given, which may be of any back end.
class QUOR_EXPORT PosixPlatform final : public Platform {
 public:
  /// Presents `accessories`, none of them null; more may be attached later.
  explicit PosixPlatform(std::vector<std::shared_ptr<EAAccessory>> accessories = {});

  /// Presents one more accessory, after those that there are. May be called from any thread.
  void attach(std::shared_ptr<EAAccessory> accessory);

  EAAccessoryManager& sharedAccessoryManager() override { return accessories_; }
  UIDevice& currentDevice() override { return device_; }
  Clock& clock() override { return clock_; }
  NSRunLoop& currentRunLoop() override;
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;
  bool isMainThread() override;
  void ignoreSigPipe() override;

 private:
  AttachedAccessories accessories_;
  ThisMachine device_;
  PosixClock clock_;
};

}  // namespace quordalvane::posix
