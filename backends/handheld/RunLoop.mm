#include <algorithm>
#include <thread>

#include "backends/handheld/Frameworks.h"
#include "backends/handheld/Objects.h"

namespace quordalvane::handheld {
namespace {

// A loop without an event source returns at once, but a port expects that running a loop takes the
// given time.
void sleepUntil(NSDate* date) {
  const double left = [date timeIntervalSinceNow];
  std::this_thread::sleep_for(std::chrono::duration<double>(std::max(left, 0.0)));
}

/// Forwards each call to the framework's loop of the calling thread. The object has no state.
class HandheldRunLoop final : public NSRunLoop {
 public:
  void runUntilDate(double seconds) override {
    ask([seconds] {
      NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:seconds];
      [[::NSRunLoop currentRunLoop] runUntilDate:end];
      sleepUntil(end);
    });
  }

  void runUntilDate(double seconds, NSStream& awaited) override {
    ask([] { [[::NSRunLoop currentRunLoop] runUntilDate:[NSDate date]]; });
    awaited.waitUntilReady(seconds);
  }
};

}  // namespace

NSRunLoop& currentRunLoop() {
  // The loop is never destroyed, because threads may still run it while the process ends.
  static auto* const loop = new HandheldRunLoop;
  return *loop;
}

}  // namespace quordalvane::handheld
