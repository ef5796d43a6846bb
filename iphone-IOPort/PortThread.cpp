// The port thread, and the passing of open and close to it.

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/Guarded.h"
#include "iphone-IOPort/LeadingNumber.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/Microseconds.h"

namespace quordalvane {

bool ExternalAccessoryPort::startPortThread() {
  // The thread keeps the port alive while it runs, and its handle releases the body at its end: a
  // handle that kept it would keep the port, and the port the handle, for ever.
  const auto thread = platform_->makeThread([self = shared_from_this()] { self->runLoop71(); });
  setThread71(thread);
  return thread != nullptr && thread->start();
}

void ExternalAccessoryPort::runLoop71() {
  constexpr auto selector = "-[ExternalAccessoryPort runLoop71]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  // A loop that throws ends the thread and not the process: later routines run on the caller, as
  // after a close.
  guarded(
      [this] {
        while (!stopThread71) {
          // The text lacks its final bracket; programs that search logs for it rely on that.
          QUOR_LOG(
              ZKLogTypeProcess, 1,
              "[NSRunLoop.currentRunLoop runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]");
          platform_->currentRunLoop().runUntilDate(0.1);
        }
      },
      [this] { QUOR_LOG(ZKLogTypeError, 0, "%@", thrownText()); });
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
}

/// Runs the routine here if no port thread could: a port made off the main thread has none, and
/// after a close it has ended or is about to end. A thread that is about to end would still take
/// the routine, but the loop that the streams are scheduled on would no longer run.
void ExternalAccessoryPort::performOnPortThread(void (ExternalAccessoryPort::*routine)()) {
  const auto thread = thread71();
  const bool runs = thread != nullptr && !stopThread71;
  if (!runs || !thread->performAndWait([this, routine] { (this->*routine)(); })) {
    (this->*routine)();
  }
}

bool ExternalAccessoryPort::open() {
  constexpr auto selector = "-[ExternalAccessoryPort open]";
  const auto tell = [this] { QUOR_LOG(ZKLogTypeError, 0, "%@", thrownText()); };
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const auto openOnItsThread = [this] {
    if (platform_->isMainThread()) {
      QUOR_LOG(ZKLogTypeProcess, 0, "NSThread.isMainThread, %d", 1);
      performOnPortThread(&ExternalAccessoryPort::open71);
    } else {
      open71();
    }
  };
  const bool ran = guarded(openOnItsThread, tell);
  // The session does not change if the pause throws: the caller learns of a failed open and closes.
  const bool paused = guarded([this] { usleep(100000); }, tell);
  const bool result = ran && paused && result71().value_or(false);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", result);
  return result;
}

void ExternalAccessoryPort::close() {
  constexpr auto selector = "-[ExternalAccessoryPort close]";
  const auto tell = [this] { QUOR_LOG(ZKLogTypeError, 0, "%@", thrownText()); };
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const auto pauseOnNewerSystems = [this] {
    const float version = leadingNumber(platform_->currentDevice().systemVersion());
    if (version >= 10.0F) {
      QUOR_LOG(ZKLogTypeProcess, 0, "UIDevice.currentDevice.systemVersion.floatValue >= 10.0, %f",
               version);
      usleep(microseconds(secInterval2()));
    }
  };
  bool isMain = false;
  const auto closeOnItsThread = [this, &isMain] {
    isMain = platform_->isMainThread();
    if (isMain) {
      QUOR_LOG(ZKLogTypeProcess, 0, "NSThread.isMainThread, %d", 1);
      performOnPortThread(&ExternalAccessoryPort::close71);
    } else {
      close71();
    }
  };
  guarded(pauseOnNewerSystems, tell);
  if (!guarded(closeOnItsThread, tell)) {
    close71();  // an exception of the platform must not leave the session open
  }
  if (isMain) {
    stopThread71 = true;
    const auto cancelThread = [this] {
      if (const auto thread = thread71()) {
        thread->cancel();
      }
    };
    guarded(cancelThread, tell);
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
}

}  // namespace quordalvane
