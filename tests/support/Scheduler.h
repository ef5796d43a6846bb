#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace quordalvane::test {

using Instant = std::chrono::nanoseconds;

/// Virtual time for several threads, of which one runs at a time. Time does not pass while a thread
/// runs, and moves to the next event when all of them wait: nothing really sleeps, and the order of
/// events depends only on the calls made. Threads take turns in the order in which their waits end;
/// equal instants end in the order in which the waits began.
class Scheduler {
 public:
  /// One thread that takes turns; made by `adopt`, valid as long as the scheduler.
  class Thread {
    friend class Scheduler;
    std::condition_variable turn_;
    bool hasTurn_ = false;
    // If empty, the thread waits until it is woken.
    std::optional<std::pair<Instant, std::uint64_t>> due_;
  };

  /// The calling thread becomes the first one and has the turn.
  Scheduler();

  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  Instant now() const;

  /// A further thread, which is due now. It must call `begin` first and `end` last.
  Thread& adopt();
  void begin(Thread& self);
  void end(Thread& self);

  /// Removes an adopted thread that never began.
  void disown(Thread& thread);

  /// The calling thread; null if it takes no turns here.
  Thread* current() const;

  /// The calling thread. Throws std::logic_error if it takes no turns here, and so cannot wait.
  Thread& waiter() const;

  /// Waits until `instant`, or until another thread wakes this one. If `instant` is in the past,
  /// the threads and events that are already due run first. Throws std::logic_error on a thread
  /// that takes no turns here.
  void waitUntil(Instant instant);

  /// Waits until another thread wakes this one. If nothing can wake it, because every thread waits
  /// and no event is due, ends the process with a message. Throws as `waitUntil`.
  void waitUntilWoken();

  /// Wakes a waiting thread: it is due now.
  void wake(Thread& thread);

  /// Runs `event` at `instant`, on whichever thread waits then and before any thread that is due at
  /// that instant. The event must not wait.
  void at(Instant instant, std::function<void()> event);

 private:
  void wait(std::unique_lock<std::mutex>& lock, Thread& self);
  void passTurn(std::unique_lock<std::mutex>& lock);
  Thread* nextThread();

  mutable std::mutex mutex_;
  Instant now_{0};
  std::uint64_t sequence_ = 0;
  std::map<Thread*, std::unique_ptr<Thread>> threads_;
  std::multimap<Instant, std::function<void()>> events_;
};

}  // namespace quordalvane::test
