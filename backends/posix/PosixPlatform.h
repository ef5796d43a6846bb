#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "platform/Platform.h"

/// The platform on this system's own calls.
namespace quordalvane::posix {

/// The platform of a program on this system: real time, real threads, and the accessories that it
/// is given, which may be of any back end. The current device is this machine; its version is the
/// kernel's release.
class QUOR_EXPORT PosixPlatform final : public Platform {
 public:
  /// Presents `accessories`, none of them null, in that order; more may be attached later.
  explicit PosixPlatform(std::vector<std::shared_ptr<EAAccessory>> accessories = {});
  ~PosixPlatform() override;
  PosixPlatform(const PosixPlatform&) = delete;
  PosixPlatform& operator=(const PosixPlatform&) = delete;

  /// Presents one more accessory, never null, after the present ones. It is never removed. The
  /// list of accessories leaves it out as long as it announces no protocol, as a USB printer does
  /// that is not plugged in. May be called from any thread.
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
