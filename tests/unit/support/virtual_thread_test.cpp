#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "tests/support/VirtualPlatform.h"

namespace quordalvane::test {
namespace {

/// A platform, and a thread that runs its run loop for a second after the thread is started.
class VirtualThreadTest : public testing::Test {
 protected:
  void pass(std::uint64_t seconds) { platform_.clock().usleep(seconds * 1000000); }

  VirtualPlatform platform_;
  const std::shared_ptr<NSThread> thread_ =
      platform_.makeThread([this] { platform_.currentRunLoop().runUntilDate(1); });
};

TEST_F(VirtualThreadTest, RunsARoutineAndLetsTheCallerWaitForTheRoutine) {
  ASSERT_TRUE(thread_->start());
  std::thread::id performer;
  EXPECT_TRUE(thread_->performAndWait([&] {
    pass(2);
    performer = std::this_thread::get_id();
  }));
  EXPECT_NE(performer, std::thread::id());
  EXPECT_NE(performer, std::this_thread::get_id());
  pass(5);
}

TEST_F(VirtualThreadTest, ReleasesARoutineThatWasRefusedBeforeTheThreadStarted) {
  const auto performed = std::make_shared<std::atomic<int>>(0);
  EXPECT_FALSE(thread_->performAndWait([performed] { ++*performed; }));
  EXPECT_EQ(performed.use_count(), 1);
  ASSERT_TRUE(thread_->start());
  pass(5);
  EXPECT_EQ(*performed, 0);
}

TEST_F(VirtualThreadTest, RefusesARoutineAfterTheThreadHasEnded) {
  ASSERT_TRUE(thread_->start());
  pass(5);
  EXPECT_FALSE(thread_->performAndWait([] { FAIL() << "was performed"; }));
}

TEST_F(VirtualThreadTest, AWaitThrowsOnAThreadThatTheSchedulerDoesNotKnow) {
  ASSERT_TRUE(thread_->start());
  std::thread([&] {
    EXPECT_THROW(thread_->performAndWait([] { FAIL() << "was performed"; }), std::logic_error);
    EXPECT_THROW(pass(1), std::logic_error);
  }).join();
  pass(5);
}

}  // namespace
}  // namespace quordalvane::test
