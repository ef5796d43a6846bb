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

// The port was designed for the interfaces of a handheld platform, and this folder keeps their
// names. A reader who knows those interfaces recognises each call; other readers need only this
// explanation. EAAccessoryManager, EAAccessory and EASession are that platform's service for
// accessories that are attached by Bluetooth or by cable. NSStream, NSRunLoop and NSThread are the
// streams, event loops and threads of that platform. UIDevice is the device that a program runs on.
// On that platform, "BT:" at the beginning of a port name means that the accessory is attached by
// Bluetooth. In this library, an accessory is any printer that a back end offers: at a network
// address, at the end of a serial line, or simulated.

namespace quordalvane {

/// The device that the program runs on.
class QUOR_EXPORT UIDevice {
 public:
  virtual ~UIDevice() = default;

  /// Returns the version of the operating system as text, for example "10.3.4".
  virtual std::string systemVersion() = 0;
};

/// Everything that a port needs from the system. A port keeps its platform alive. The returned
/// references are valid as long as the platform exists. Any thread may call the functions.
class QUOR_EXPORT Platform {
 public:
  virtual ~Platform() = default;

  /// Returns the manager of the attached accessories. All ports of the platform share this manager.
  virtual EAAccessoryManager& sharedAccessoryManager() = 0;

  /// Returns the device on which the program runs.
  virtual UIDevice& currentDevice() = 0;

  /// Returns the clock by which ports measure time and wait.
  virtual Clock& clock() = 0;

  /// Returns the run loop of the calling thread, which is valid on this thread until the thread
  /// ends.
  virtual NSRunLoop& currentRunLoop() = 0;

  /// Returns a thread, not started yet, that will run `body`. Returns null if the system cannot
  /// create a thread.
  virtual std::shared_ptr<NSThread> makeThread(std::function<void()> body) = 0;

  /// Returns whether the calling thread is the application's main thread.
  virtual bool isMainThread() = 0;

  /// Makes the process ignore the signal SIGPIPE.
  virtual void ignoreSigPipe() = 0;

  /// Returns a number of 32 unpredictable bits. The default takes the number from the system's
  /// random generator. Jobs use this function; ports do not.
  virtual std::uint32_t randomNumber();
};

/// Returns the platform that ports use if they are created without a platform; null until a
/// platform is set.
QUOR_EXPORT std::shared_ptr<Platform> processPlatform();

/// Sets the platform of the process. Existing ports keep their platform.
QUOR_EXPORT void setProcessPlatform(std::shared_ptr<Platform> platform);

}  // namespace quordalvane
