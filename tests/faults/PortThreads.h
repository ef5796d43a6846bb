#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "platform/Forwarding.h"

namespace quordalvane::test {

/// Waits until only the caller owns the platform. The virtual clock does not wait while a port
/// thread, which is about to end, releases its port. So a test may continue before the release.
template <typename Kind>
void waitUntilReleased(const std::shared_ptr<Kind>& platform) {
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (platform.use_count() > 1 && std::chrono::steady_clock::now() < giveUp) {
    std::this_thread::yield();
  }
  EXPECT_EQ(platform.use_count(), 1);
}

/// Counts the threads that run.
class CountedThreads : public ForwardingPlatform {
 public:
  explicit CountedThreads(std::shared_ptr<Platform> next) : ForwardingPlatform(std::move(next)) {}

  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override {
    return ForwardingPlatform::makeThread([this, body = std::move(body)] {
      ++running_;
      body();
      --running_;
    });
  }

  int running() const { return running_; }

 private:
  std::atomic<int> running_ = 0;
};

}  // namespace quordalvane::test
