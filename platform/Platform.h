#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <quordalvane/QuorExport.h>

#include "platform/Clock.h"
#include "platform/EAAccessory.h"
#include "platform/NSRunLoop.h"
#include "platform/NSThread.h"

// The port is specified on the interfaces of a handheld platform, and this folder keeps their
// names, so that a reader who knows those interfaces finds each call again, and one who does not
// need only this page. EAAccessoryManager, EAAccessory and EASession are its service for
// accessories that are attached by Bluetooth or by cable; NSStream, NSRunLoop and NSThread are its
// streams, event loops and threads; UIDevice is the device that a program runs on. "BT:", with
// which a port name begins, says there that the accessory is attached by Bluetooth. Here an
// accessory is any printer that a back end presents as one: on a network address, at the end of a
// serial line, or simulated.

namespace quordalvane {

/// The device that the program runs on.
class QUOR_EXPORT UIDevice {
 public:
  virtual ~UIDevice() = default;

  /// The version of the operating system as text, "10.3.4" for example.
  virtual std::string systemVersion() = 0;
};

/// Everything that a port needs of the system. A port keeps its platform alive. The references that
/// the calls return are valid as long as the platform; all calls may be made from any thread.
class QUOR_EXPORT Platform {
 public:
  virtual ~Platform() = default;

  /// The accessories that are attached, the same for all ports of the platform.
  virtual EAAccessoryManager& sharedAccessoryManager() = 0;

  /// The device that the program runs on.
  virtual UIDevice& currentDevice() = 0;

  /// The time that ports read, and by which they wait.
  virtual Clock& clock() = 0;

  /// The run loop of the calling thread, valid on that thread until it ends.
  virtual NSRunLoop& currentRunLoop() = 0;

  /// A thread that will run `body`; it is not started yet. Null if the system has no thread left.
  virtual std::shared_ptr<NSThread> makeThread(std::function<void()> body) = 0;

  /// Whether the calling thread is the application's main thread.
  virtual bool isMainThread() = 0;

  /// Sets the process to ignore SIGPIPE.
  virtual void ignoreSigPipe() = 0;

  /// A number that nobody can foresee, any of its 32 bits; from the system's generator unless a
  /// platform has one of its own. A port does not ask for it, jobs do.
  virtual std::uint32_t randomNumber();
};

/// The platform of ports that are created without one; null until one is set.
QUOR_EXPORT std::shared_ptr<Platform> processPlatform();

/// Makes `platform` the process's own. Ports that exist keep the one they have.
QUOR_EXPORT void setProcessPlatform(std::shared_ptr<Platform> platform);

}  // namespace quordalvane
