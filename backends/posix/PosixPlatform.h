#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "platform/Platform.h"

/// The platform on POSIX systems.
namespace quordalvane::posix {

/// The platform of an ordinary program, with real time and real threads. The attached accessories
/// may belong to any back end. The current device is this machine, and its version is the release
/// of the kernel.
class QUOR_EXPORT PosixPlatform final : public Platform {
 public:
  /// Creates a platform with `accessories` in this order. No accessory may be null. More
  /// accessories can be attached later.
  explicit PosixPlatform(std::vector<std::shared_ptr<EAAccessory>> accessories = {});
  ~PosixPlatform() override;
  PosixPlatform(const PosixPlatform&) = delete;
  PosixPlatform& operator=(const PosixPlatform&) = delete;

  /// Adds an accessory, which must not be null, at the end of the list. An accessory is never
  /// removed. `connectedAccessories` does not return an accessory while it announces no protocol,
  /// for example while a USB printer is not plugged in. Any thread may call this function.
  void attach(std::shared_ptr<EAAccessory> accessory);

  EAAccessoryManager& sharedAccessoryManager() override;
  UIDevice& currentDevice() override;
  Clock& clock() override;
  NSRunLoop& currentRunLoop() override;
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;
  bool isMainThread() override;
  void ignoreSigPipe() override;

 private:
  struct Parts;
  const std::unique_ptr<Parts> parts_;
};

}  // namespace quordalvane::posix
