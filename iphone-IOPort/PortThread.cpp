// The port thread, and `open` and `close`, which run on it.

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/Guarded.h"
#include "iphone-IOPort/LeadingNumber.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/Microseconds.h"

namespace quordalvane {

bool ExternalAccessoryPort::startPortThread() {
  // The function that the thread runs owns the port, so the port exists while the thread runs. The
  // thread's handle releases this function when the thread ends; otherwise port and handle would
  // keep each other alive for ever.
  const auto thread = platform_->makeThread([self = shared_from_this()] { self->runLoop71(); });
  setThread71(thread);
  return thread != nullptr && thread->start();
}

void ExternalAccessoryPort::runLoop71() {
  constexpr auto selector = "-[ExternalAccessoryPort runLoop71]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  // If the run loop throws, only the thread ends, not the process. Later calls of `open` and
  // `close` then run on the caller's thread, as they do after a close.
  guarded(
      [this] {
        while (!stopThread71) {
          // The text of this log record lacks its final bracket, because programs search logs for
          // exactly this text.
          QUOR_LOG(
              ZKLogTypeProcess, 1,
              "[NSRunLoop.currentRunLoop runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]");
          platform_->currentRunLoop().runUntilDate(0.1);
        }
      },
      [this] { QUOR_LOG(ZKLogTypeError, 0, "%@", thrownText()); });
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
}

/// Runs the routine on the port thread, or on the calling thread if no port thread can run it. A
/// port that was not created on the main thread has no port thread; after a close the port thread
/// has ended or is about to end. A thread that is about to end does not get the routine: the
/// routine schedules the streams on the run loop of its thread, and such a thread no longer runs
/// its run loop.
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
  // If the pause throws, the session remains open. The caller sees that `open` failed, and calls
  // `close`.
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
    close71();  // the platform threw, and the session must not remain open
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
