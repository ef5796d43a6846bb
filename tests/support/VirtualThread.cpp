#include "tests/support/VirtualThread.h"

#include <exception>
#include <thread>
#include <utility>

#include "platform/NSStream.h"

namespace quordalvane::test {
namespace {

/// The run loop of the calling thread, and the loop's scheduler. Each platform has a scheduler of
/// its own, so a thread that uses another platform gets a new loop.
struct OwnLoop {
  const Scheduler* scheduler = nullptr;
  std::shared_ptr<VirtualRunLoop> loop;
};

thread_local OwnLoop ownLoop;

Instant instantAfter(Scheduler& scheduler, double seconds) {
  return scheduler.now() + std::chrono::round<Instant>(std::chrono::duration<double>(seconds));
}

}  // namespace

VirtualRunLoop& currentVirtualRunLoop(Scheduler& scheduler) {
  if (ownLoop.scheduler != &scheduler) {
    ownLoop = {&scheduler, std::make_shared<VirtualRunLoop>(scheduler)};
  }
  return *ownLoop.loop;
}

bool VirtualRunLoop::post(std::function<void()> routine) {
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return false;
  }
  routines_.push_back(std::move(routine));
  return true;
}

bool VirtualRunLoop::runOne() {
  std::function<void()> routine;
  {
    const std::lock_guard lock(mutex_);
    if (routines_.empty()) {
      return false;
    }
    routine = std::move(routines_.front());
    routines_.pop_front();
  }
  routine();
  return true;
}

void VirtualRunLoop::drainAndClose() {
  while (true) {
    while (runOne()) {
    }
    const std::lock_guard lock(mutex_);
    if (routines_.empty()) {
      closed_ = true;
      return;
    }
  }
}

void VirtualRunLoop::runUntilDate(double seconds) {
  const Instant deadline = instantAfter(scheduler_, seconds);
  do {
    while (runOne()) {
    }
    if (scheduler_.now() < deadline) {
      scheduler_.waitUntil(deadline);  // a routine that is posted ends the wait
    }
  } while (runOne() || scheduler_.now() < deadline);
}

void VirtualRunLoop::runUntilDate(double seconds, NSStream& awaited) {
  while (runOne()) {
  }
  awaited.waitUntilReady(seconds);
}

VirtualThread::VirtualThread(Scheduler& scheduler, std::function<void()> body)
    : scheduler_(scheduler),
      body_(std::move(body)),
      loop_(std::make_shared<VirtualRunLoop>(scheduler)) {}

bool VirtualThread::start() {
  auto ownBody = std::exchange(body_, {});  // if no thread starts, the body is released here
  Scheduler::Thread& self = scheduler_.adopt();
  try {
    std::thread([&scheduler = scheduler_, &self, loop = loop_,
                 body = std::move(ownBody)]() mutable {
      scheduler.begin(self);
      ownLoop = {&scheduler, loop};
      body();
      loop->drainAndClose();
      // `end` must precede the release of the body, because the body may hold the last reference to
      // the platform, which owns the scheduler.
      scheduler.end(self);
      body = {};
    }).detach();
  } catch (const std::exception&) {
    scheduler_.disown(self);
    return false;
  }
  thread_ = &self;
  return true;
}

bool VirtualThread::performAndWait(std::function<void()> routine) {
  if (ownLoop.loop == loop_) {
    routine();
    return true;
  }
  if (thread_ == nullptr) {
    return false;
  }
  Scheduler::Thread& caller = scheduler_.waiter();
  bool done = false;
  std::exception_ptr raised;
  const bool accepted = loop_->post([&] {
    try {
      routine();
    } catch (...) {
      raised = std::current_exception();
    }
    done = true;
    scheduler_.wake(caller);
  });
  if (!accepted) {
    return false;
  }
  scheduler_.wake(*thread_);
  while (!done) {
    scheduler_.waitUntilWoken();
  }
  if (raised) {
    std::rethrow_exception(raised);
  }
  return true;
}

}  // namespace quordalvane::test
