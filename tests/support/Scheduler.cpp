#include "tests/support/Scheduler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace quordalvane::test {
namespace {

/// The scheduler that the calling thread belongs to, and the thread's entry in it.
struct Place {
  const Scheduler* scheduler = nullptr;
  Scheduler::Thread* thread = nullptr;
};

thread_local Place place;

}  // namespace

Scheduler::Scheduler() {
  Thread& first = adopt();
  first.due_.reset();
  first.hasTurn_ = true;
  place = {this, &first};
}

Instant Scheduler::now() const {
  const std::lock_guard lock(mutex_);
  return now_;
}

Scheduler::Thread& Scheduler::adopt() {
  const std::lock_guard lock(mutex_);
  auto thread = std::make_unique<Thread>();
  thread->due_ = {now_, sequence_++};
  Thread& adopted = *thread;
  threads_.emplace(&adopted, std::move(thread));
  return adopted;
}

void Scheduler::begin(Thread& self) {
  place = {this, &self};
  std::unique_lock lock(mutex_);
  self.turn_.wait(lock, [&self] { return self.hasTurn_; });
}

void Scheduler::end(Thread& self) {
  place = {};
  std::unique_lock lock(mutex_);
  threads_.erase(&self);
  passTurn(lock);
}

void Scheduler::disown(Thread& thread) {
  const std::lock_guard lock(mutex_);
  threads_.erase(&thread);
}

Scheduler::Thread* Scheduler::current() const {
  return place.scheduler == this ? place.thread : nullptr;
}

Scheduler::Thread& Scheduler::waiter() const {
  Thread* const self = current();
  if (self == nullptr) {
    throw std::logic_error(
        "a thread that the virtual platform did not make cannot wait in its time");
  }
  return *self;
}

void Scheduler::waitUntil(Instant instant) {
  Thread& self = waiter();
  std::unique_lock lock(mutex_);
  self.due_ = {std::max(instant, now_), sequence_++};
  wait(lock, self);
}

void Scheduler::waitUntilWoken() {
  Thread& self = waiter();
  std::unique_lock lock(mutex_);
  self.due_.reset();
  wait(lock, self);
}

void Scheduler::wake(Thread& thread) {
  const std::lock_guard lock(mutex_);
  if (!thread.hasTurn_) {
    thread.due_ = {now_, sequence_++};
  }
}

void Scheduler::at(Instant instant, std::function<void()> event) {
  const std::lock_guard lock(mutex_);
  events_.emplace(std::max(instant, now_), std::move(event));
}

void Scheduler::wait(std::unique_lock<std::mutex>& lock, Thread& self) {
  self.hasTurn_ = false;
  passTurn(lock);
  self.turn_.wait(lock, [&self] { return self.hasTurn_; });
}

/// Moves time to the next wait or event that is due. This function runs events itself, without the
/// lock; the first thread that is due gets the turn.
void Scheduler::passTurn(std::unique_lock<std::mutex>& lock) {
  while (true) {
    Thread* const next = nextThread();
    if (!events_.empty() && (next == nullptr || events_.begin()->first <= next->due_->first)) {
      auto event = events_.extract(events_.begin());
      now_ = std::max(now_, event.key());
      lock.unlock();
      event.mapped()();
      lock.lock();
      continue;
    }
    if (next != nullptr) {
      now_ = std::max(now_, next->due_->first);
      next->due_.reset();
      next->hasTurn_ = true;
      next->turn_.notify_one();
    } else if (!threads_.empty()) {
      std::fputs("virtual time has stopped: every thread waits and no event is due\n", stderr);
      std::abort();
    }
    return;
  }
}

Scheduler::Thread* Scheduler::nextThread() {
  Thread* next = nullptr;
  for (const auto& [thread, owner] : threads_) {
    if (thread->due_ && (next == nullptr || *thread->due_ < *next->due_)) {
      next = thread;
    }
  }
  return next;
}

}  // namespace quordalvane::test
