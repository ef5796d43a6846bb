#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <vector>

#include "backends/posix/PosixPlatform.h"
#include "backends/posix/PosixThread.h"
#include "backends/posix/RunLoop.h"
#include "tests/support/Eventually.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

using test::eventually;

/// A thread that runs its loop until this object is destroyed.
class TurningThread {
 public:
  TurningThread() { EXPECT_TRUE(thread.start()); }
  ~TurningThread() {
    stop_ = true;
    while (thread.performAndWait([] {})) {
    }
  }

 private:
  std::atomic<bool> stop_ = false;

 public:
  PosixThread thread{[this] {
    while (!stop_) {
      currentRunLoop().runUntilDate(0.005);
    }
  }};
};

TEST(PosixThread, RunsItsFunctionOnAnotherThreadWithItsOwnRunLoop) {
  TurningThread turning;
  PosixPlatform platform;
  NSRunLoop* const ours = &platform.currentRunLoop();
  EXPECT_TRUE(platform.isMainThread());
  EXPECT_TRUE(turning.thread.performAndWait([&] {
    EXPECT_FALSE(platform.isMainThread());
    EXPECT_NE(&platform.currentRunLoop(), ours);
  }));
}

TEST(PosixThread, RunsEveryRoutineOnItsOwnThread) {
  TurningThread turning;
  std::thread::id first;
  std::thread::id second;
  EXPECT_TRUE(turning.thread.performAndWait([&] { first = std::this_thread::get_id(); }));
  EXPECT_TRUE(turning.thread.performAndWait([&] { second = std::this_thread::get_id(); }));
  EXPECT_EQ(first, second);
  EXPECT_NE(first, std::this_thread::get_id());
}

TEST(PosixThread, RefusesARoutineBeforeTheThreadStarts) {
  PosixThread thread([] {});
  bool ran = false;
  EXPECT_FALSE(thread.performAndWait([&] { ran = true; }));
  EXPECT_FALSE(ran);
}

TEST(PosixThread, AcceptsARoutineAsSoonAsTheThreadIsStarted) {
  for (int i = 0; i < 50; ++i) {
    TurningThread turning;
    bool ran = false;
    EXPECT_TRUE(turning.thread.performAndWait([&] { ran = true; }));
    EXPECT_TRUE(ran);
  }
}

TEST(PosixThread, RefusesToRunARoutineAfterTheThreadHasEnded) {
  PosixThread thread([] {});
  ASSERT_TRUE(thread.start());
  EXPECT_TRUE(eventually([&] { return !thread.performAndWait([] {}); }));
  bool ran = false;
  EXPECT_FALSE(thread.performAndWait([&] { ran = true; }));
  EXPECT_FALSE(ran);
}

TEST(PosixThread, RunsEveryAcceptedRoutineEvenIfTheThreadIsEnding) {
  int accepted = 0;
  for (int i = 0; i < 10'000; ++i) {
    PosixThread thread([] {});
    ASSERT_TRUE(thread.start());
    bool ran = false;
    const bool performed = thread.performAndWait([&] { ran = true; });
    ASSERT_EQ(performed, ran);
    accepted += performed ? 1 : 0;
  }
  EXPECT_GT(accepted, 0) << "the threads were always over first, so nothing was tried";
}

TEST(PosixThread, RunsOrRefusesEveryRoutineOfManyThreads) {
  for (int round = 0; round < 100; ++round) {
    std::atomic<bool> stop = false;
    PosixThread thread([&] {
      while (!stop) {
        currentRunLoop().runUntilDate(0.005);
      }
    });
    ASSERT_TRUE(thread.start());
    int ran = 0;  // changed only by routines, which all run on `thread`
    std::atomic<int> performed = 0;
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) {
      callers.emplace_back([&] {
        for (int call = 0; call < 20; ++call) {
          performed += thread.performAndWait([&] { stop = ++ran > 40; }) ? 1 : 0;
        }
      });
    }
    for (std::thread& caller : callers) {
      caller.join();
    }
    EXPECT_TRUE(eventually([&] { return !thread.performAndWait([&] { ++performed, ++ran; }); }));
    EXPECT_EQ(performed, ran);
  }
}

TEST(PosixThread, RunsARoutineDirectlyIfTheThreadCallsItself) {
  TurningThread turning;
  int depth = 0;
  EXPECT_TRUE(turning.thread.performAndWait([&] {
    depth = 1;
    EXPECT_TRUE(turning.thread.performAndWait([&] { depth = 2; }));
    EXPECT_EQ(depth, 2);
  }));
}

TEST(PosixThread, RethrowsTheExceptionOfARoutineInTheCallerAndRunsLaterRoutines) {
  TurningThread turning;
  EXPECT_THROW(turning.thread.performAndWait([] { throw std::out_of_range("far"); }),
               std::out_of_range);
  EXPECT_THROW(turning.thread.performAndWait([] { throw 7; }), int);
  EXPECT_TRUE(turning.thread.performAndWait([] {}));
}

TEST(PosixThread, ReleasesItsFunctionWhenTheFunctionHasEnded) {
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  PosixThread thread([held = std::move(held)] {});
  EXPECT_FALSE(watched.expired());
  ASSERT_TRUE(thread.start());
  EXPECT_TRUE(eventually([&] { return watched.expired(); }));
}

TEST(PosixThread, ReleasesItsFunctionIfItIsNeverStarted) {
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  std::make_unique<PosixThread>([held = std::move(held)] {}).reset();
  EXPECT_TRUE(watched.expired());
}

// An object that owns its thread; the thread's body owns the object, as in a port.
struct Owner {
  Owner(std::atomic<bool>& hasCalledItself, std::atomic<bool>& hasEnded)
      : calledItself(hasCalledItself), ended(hasEnded) {}

  ~Owner() {
    calledItself = thread->performAndWait([] {});
    thread->cancel();
    ended = true;
  }

  std::shared_ptr<NSThread> thread;
  std::atomic<bool>& calledItself;
  std::atomic<bool>& ended;
};

TEST(PosixThread, MayDestroyItsOwner) {
  for (int i = 0; i < 200; ++i) {
    std::atomic<bool> calledItself = false;
    std::atomic<bool> ended = false;
    std::atomic<bool> released = false;
    auto owner = std::make_shared<Owner>(calledItself, ended);
    owner->thread = std::make_shared<PosixThread>([owner, &released] {
      while (!released) {
        currentRunLoop().runUntilDate(0.001);
      }
    });
    ASSERT_TRUE(owner->thread->start());
    owner.reset();
    released = true;
    ASSERT_TRUE(eventually([&] { return ended.load(); }));
    EXPECT_TRUE(calledItself);
  }
}

TEST(PosixThread, ARoutineMayReleaseTheHandleOfItsThread) {
  std::atomic<bool> stop = false;
  std::atomic<bool> over = false;
  std::shared_ptr<NSThread> thread = std::make_shared<PosixThread>([&] {
    while (!stop) {
      currentRunLoop().runUntilDate(0.005);
    }
    over = true;
  });
  ASSERT_TRUE(thread->start());
  NSThread* const handle = thread.get();
  EXPECT_TRUE(handle->performAndWait([&] {
    thread.reset();
    stop = true;
  }));
  EXPECT_TRUE(eventually([&] { return over.load(); }));
}

/// While this object exists, the system refuses every new thread, because the default stack of a
/// thread is larger than the memory.
class NoMoreThreads {
 public:
  NoMoreThreads() {
    ::pthread_getattr_default_np(&before_);
    pthread_attr_t huge;
    ::pthread_getattr_default_np(&huge);
    EXPECT_EQ(::pthread_attr_setstacksize(&huge, std::size_t{1} << 60), 0);
    EXPECT_EQ(::pthread_setattr_default_np(&huge), 0);
    ::pthread_attr_destroy(&huge);
  }
  ~NoMoreThreads() {
    ::pthread_setattr_default_np(&before_);
    ::pthread_attr_destroy(&before_);
  }

 private:
  pthread_attr_t before_;
};

TEST(PosixThread, FailsToStartAndReleasesItsFunctionIfTheSystemRefusesAThread) {
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  bool ran = false;
  PosixThread thread([held = std::move(held), &ran] { ran = true; });
  {
    const NoMoreThreads refusal;
    EXPECT_FALSE(thread.start());
  }
  EXPECT_TRUE(watched.expired());
  EXPECT_FALSE(ran);
  EXPECT_FALSE(thread.performAndWait([&] { ran = true; }));
  EXPECT_FALSE(ran);
}

TEST(PosixThread, RefusesEveryRoutineIfTheSystemRefusesAThread) {
  std::atomic<PosixThread*> target = nullptr;
  std::atomic<bool> stop = false;
  std::atomic<int> performed = 0;
  std::thread caller([&] {
    while (!stop) {
      if (auto* const thread = target.load()) {
        performed += thread->performAndWait([] {}) ? 1 : 0;
      }
    }
  });
  std::vector<std::shared_ptr<PosixThread>> all;
  {
    const NoMoreThreads refusal;
    for (int i = 0; i < 2000; ++i) {
      all.push_back(std::make_shared<PosixThread>([] {}));
      target = all.back().get();
      EXPECT_FALSE(all.back()->start());
    }
  }
  stop = true;
  caller.join();
  EXPECT_EQ(performed, 0);
}

TEST(PosixThreadDeathTest, TheProcessMayExitWhileThreadsRunTheirLoops) {
  for (int i = 0; i < 10; ++i) {
    EXPECT_EXIT(
        {
          for (int threads = 0; threads < 3; ++threads) {
            PosixThread([] {
              while (true) {
                currentRunLoop().runUntilDate(0.0001);
              }
            }).start();
          }
          std::exit(0);
        },
        testing::ExitedWithCode(0), "");
  }
}

}  // namespace
}  // namespace quordalvane::posix
