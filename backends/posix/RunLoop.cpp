#include "backends/posix/RunLoop.h"

#include "backends/posix/Deadline.h"
#include "backends/posix/PosixClock.h"
#include "platform/NSStream.h"

namespace quordalvane::posix {
namespace {

thread_local ThreadRunLoop* attached = nullptr;

class PlainRunLoop final : public NSRunLoop {
 public:
  void runUntilDate(double seconds) override { sleepUntil(deadlineIn(seconds)); }
  void runUntilDate(double seconds, NSStream& awaited) override { awaited.waitUntilReady(seconds); }
};

}  // namespace

// A routine that was passed to the loop. This object is on the stack of the thread that waits for
// the routine.
struct ThreadRunLoop::Carried {
  enum class State { Waiting, Ran, Refused };

  const std::function<void()>& routine;
  State state = State::Waiting;
  std::exception_ptr error = nullptr;
};

void ThreadRunLoop::runUntilDate(double seconds) {
  const SteadyTime deadline = deadlineIn(seconds);
  std::unique_lock lock(mutex_);
  do {
    runCarried(lock);
  } while (arrived_.wait_until(lock, deadline, [this] { return !waiting_.empty(); }) &&
           !hasPassed(deadline));
}

void ThreadRunLoop::runUntilDate(double seconds, NSStream& awaited) {
  const SteadyTime deadline = deadlineIn(seconds);
  {
    std::unique_lock lock(mutex_);
    runCarried(lock);
  }
  awaited.waitUntilReady(secondsUntil(deadline));
}

void ThreadRunLoop::open() {
  const std::lock_guard lock(mutex_);
  open_ = true;
}

void ThreadRunLoop::finish() {
  std::unique_lock lock(mutex_);
  while (!waiting_.empty()) {
    runCarried(lock);
  }
  open_ = false;
}

void ThreadRunLoop::refuse() {
  const std::lock_guard lock(mutex_);
  open_ = false;
  for (Carried* carried : waiting_) {
    carried->state = Carried::State::Refused;
  }
  waiting_.clear();
  settled_.notify_all();
}

bool ThreadRunLoop::performAndWait(const std::function<void()>& routine) {
  if (attached == this) {
    routine();
    return true;
  }
  Carried carried{.routine = routine};
  std::unique_lock lock(mutex_);
  if (!open_) {
    return false;
  }
  waiting_.push_back(&carried);
  arrived_.notify_one();
  settled_.wait(lock, [&] { return carried.state != Carried::State::Waiting; });
  if (carried.error) {
    std::rethrow_exception(carried.error);
  }
  return carried.state == Carried::State::Ran;
}

void ThreadRunLoop::attach() {
  attached = this;
}

void ThreadRunLoop::detach() {
  attached = nullptr;
}

// Runs the waiting routines in order, without the lock. Routines that arrive during this call run
// in the next call. Otherwise a thread that never stops passing routines could prevent this call
// from ending.
void ThreadRunLoop::runCarried(std::unique_lock<std::mutex>& lock) {
  for (auto left = waiting_.size(); left > 0 && !waiting_.empty(); --left) {
    Carried& carried = *waiting_.front();
    waiting_.pop_front();
    lock.unlock();
    try {
      carried.routine();
    } catch (...) {
      carried.error = std::current_exception();
    }
    lock.lock();
    carried.state = Carried::State::Ran;
    settled_.notify_all();
  }
}

NSRunLoop& currentRunLoop() {
  // The loop is never destroyed, because threads may still run it while the process ends.
  static auto* const plain = new PlainRunLoop;
  return attached != nullptr ? static_cast<NSRunLoop&>(*attached) : *plain;
}

}  // namespace quordalvane::posix
