#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace quordalvane::test {

/// A thread that shows when it waits in a system call.
class SleepingThread {
 public:
  explicit SleepingThread(std::function<void()> body)
      : thread_([this, run = std::move(body)] {
          id_ = ::gettid();
          run();
        }) {}

  void awaitSleep() {
    while (id_ == 0 || state() != 'S') {
      std::this_thread::yield();
    }
  }
  void join() { thread_.join(); }

 private:
  char state() const {
    std::ifstream file("/proc/self/task/" + std::to_string(id_) + "/stat");
    std::string text;
    std::getline(file, text);
    return text.at(text.rfind(')') + 2);
  }

  std::atomic<pid_t> id_ = 0;
  std::thread thread_;
};

}  // namespace quordalvane::test
