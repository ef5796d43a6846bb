#include "backends/posix/PosixThread.h"

#include <exception>
#include <thread>
#include <utility>

#include "backends/posix/RunLoop.h"

namespace quordalvane::posix {
namespace {

// Runs on the new thread, from its beginning to its end.
void live(const std::shared_ptr<ThreadRunLoop>& loop, std::function<void()> body) {
  loop->attach();
  body();
  loop->finish();
  // The objects that the body owns are destroyed here, and their destructors may use the run loop
  // of this thread. So the loop is detached after that.
  body = nullptr;
  loop->detach();
}

}  // namespace

PosixThread::PosixThread(std::function<void()> body)
    : body_(std::move(body)), loop_(std::make_shared<ThreadRunLoop>()) {}

bool PosixThread::start() {
  loop_->open();
  try {
    std::thread(live, loop_, std::exchange(body_, nullptr)).detach();
    return true;
  } catch (const std::exception&) {
    loop_->refuse();
    return false;
  }
}

bool PosixThread::performAndWait(std::function<void()> routine) {
  const auto loop = loop_;  // keeps the loop alive, because the routine may release this handle
  return loop->performAndWait(routine);
}

}  // namespace quordalvane::posix
