#include "backends/handheld/HandheldPlatform.h"

#include <csignal>
#include <utility>

#include "backends/handheld/Frameworks.h"
#include "backends/handheld/HandheldClock.h"

namespace quordalvane::handheld {

HandheldPlatform::HandheldPlatform()
    : accessories_(makeAccessoryManager()),
      device_(makeDevice()),
      clock_(std::make_unique<HandheldClock>()) {}

NSRunLoop& HandheldPlatform::currentRunLoop() {
  return handheld::currentRunLoop();
}

std::shared_ptr<NSThread> HandheldPlatform::makeThread(std::function<void()> body) {
  return handheld::makeThread(std::move(body));
}

bool HandheldPlatform::isMainThread() {
  return handheld::isMainThread();
}

void HandheldPlatform::ignoreSigPipe() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace quordalvane::handheld
