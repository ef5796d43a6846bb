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

/// Virtual time for several threads, of which one runs at a time: this thread has the turn. Time
/// does not pass while a thread runs. When all threads wait, time jumps to the end of the next wait
/// or to the next event. Nothing really sleeps, and the order of events depends only on the calls
/// made. The thread whose wait ends first gets the turn. If several waits end at the same instant,
/// the wait that began first ends first.
class Scheduler {
 public:
  /// One thread of a scheduler. `adopt` makes it. It is valid until `end` or `disown`.
  class Thread {
    friend class Scheduler;
    std::condition_variable turn_;
    bool hasTurn_ = false;
    // If empty, the thread waits until it is woken.
    std::optional<std::pair<Instant, std::uint64_t>> due_;
  };

  /// Makes the calling thread the scheduler's first thread, which has the turn.
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

  /// The calling thread; null if it does not belong to this scheduler.
  Thread* current() const;

  /// The calling thread. Throws std::logic_error if it does not belong to this scheduler, because
  /// then it cannot wait in virtual time.
  Thread& waiter() const;

  /// Waits until `instant`, or until another thread wakes this one. If `instant` is in the past,
  /// the threads and events that are already due run first. Throws std::logic_error if the
  /// calling thread does not belong to this scheduler.
  void waitUntil(Instant instant);

  /// Waits until another thread wakes this one. If nothing can wake it, because every thread waits
  /// and no event is due, ends the process with a message. Throws as `waitUntil`.
  void waitUntilWoken();

  /// Wakes a waiting thread: it is due now.
  void wake(Thread& thread);

  /// Runs `event` at `instant`, before all threads that are due at that instant. The event runs on
  /// the thread that most recently had the turn, while this thread waits or ends. The event must
  /// not wait.
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
