#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "backends/posix/PosixPlatform.h"
#include "backends/virtual/VirtualAccessory.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "platform/Forwarding.h"
#include "simulator/PrinterState.h"

namespace quordalvane::test {

/// Sleeps take no time here: the pauses of open and close would make the test too long.
class SleeplessClock : public ForwardingClock {
 public:
  using ForwardingClock::ForwardingClock;
  void usleep(std::uint64_t) override { std::this_thread::yield(); }
};

/// A platform with real threads and one attached printer.
class SleeplessPlatform : public ForwardingPlatform {
 public:
  SleeplessPlatform() : SleeplessPlatform(std::make_shared<posix::PosixPlatform>()) {}

  Clock& clock() override { return clock_; }

 private:
  explicit SleeplessPlatform(const std::shared_ptr<posix::PosixPlatform>& next)
      : ForwardingPlatform(next), clock_(next->clock()) {
    next->attach(std::make_shared<virtuals::VirtualAccessory>(
        AccessoryIdentity{}, std::make_unique<simulator::VirtualPrinter>(simulator::PrinterState()),
        clock_));
  }

  SleeplessClock clock_;
};

inline std::shared_ptr<ExternalAccessoryPort> makePort(const std::shared_ptr<Platform>& platform) {
  return ExternalAccessoryPort::initWithPortName("BT:", "", 1000, ZKEmulationQuorLine, platform);
}

/// The kernel's own count of the threads. A listing of the threads misses some of them while others
/// end.
inline int threadCount() {
  std::ifstream status("/proc/self/status");
  std::string word;
  int count = 0;
  while (status >> word && word != "Threads:") {
  }
  status >> count;
  return count;
}

/// The number of threads before a test starts any. When a process starts its first thread, a
/// sanitizer may start a thread as well. This function starts and joins a thread, so that the
/// number includes the sanitizer's thread.
inline int threadsAtRest() {
  pid_t id = 0;
  std::thread([&id] { id = gettid(); }).join();
  while (std::filesystem::exists("/proc/self/task/" + std::to_string(id))) {
    std::this_thread::yield();  // the thread is joined, but the kernel still counts it
  }
  return threadCount();
}

/// Waits until at most `count` threads run; returns false if more run after 30 s. The thread of a
/// port ends within 0.1 s after the close, but may take longer on a loaded machine.
inline bool threadsComeBackTo(int count) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (threadCount() > count && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
  }
  return threadCount() <= count;
}

}  // namespace quordalvane::test
