#include "locks/ByteLock.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>

#include "tests/support/TemporaryFolder.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;

constexpr unsigned mode = 0600;

/// A process that takes the lock and keeps it until it is killed.
class Holder {
 public:
  Holder(const std::string& file, std::int64_t offset) {
    int ready[2];
    EXPECT_EQ(::pipe(ready), 0);
    process_ = ::fork();
    if (process_ == 0) {
      const auto lock = ByteLock::tryTake(file, offset, mode);
      EXPECT_EQ(::write(ready[1], lock ? "+" : "-", 1), 1);
      while (true) {
        ::pause();
      }
    }
    char answer = 0;
    EXPECT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, '+');
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~Holder() { kill(); }

  void kill() {
    if (process_ > 0) {
      ::kill(process_, SIGKILL);
      ::waitpid(process_, nullptr, 0);
      process_ = 0;
    }
  }

 private:
  pid_t process_ = 0;
};

class ByteLockTest : public testing::Test {
 protected:
  const test::TemporaryFolder folder;
  const std::string file = folder.file("locks");
};

TEST_F(ByteLockTest, ExcludesOtherLocksOfTheSameProcessUntilItIsReleased) {
  {
    const auto lock = ByteLock::tryTake(file, 7, mode);
    ASSERT_TRUE(lock);
    EXPECT_FALSE(ByteLock::tryTake(file, 7, mode));
    EXPECT_TRUE(ByteLock::isTaken(file, 7));
  }
  EXPECT_FALSE(ByteLock::isTaken(file, 7));
  EXPECT_TRUE(ByteLock::tryTake(file, 7, mode));
}

TEST_F(ByteLockTest, LocksOnlyItsOwnByte) {
  const auto lock = ByteLock::tryTake(file, 7, mode);
  EXPECT_TRUE(ByteLock::tryTake(file, 6, mode));
  EXPECT_TRUE(ByteLock::tryTake(file, 8, mode));
  EXPECT_FALSE(ByteLock::isTaken(file, 6));
}

TEST_F(ByteLockTest, IsReleasedWhenTheProcessThatHoldsItDies) {
  Holder holder(file, 7);
  EXPECT_FALSE(ByteLock::tryTake(file, 7, mode));
  EXPECT_TRUE(ByteLock::isTaken(file, 7));
  holder.kill();
  EXPECT_TRUE(ByteLock::tryTake(file, 7, mode));
}

TEST_F(ByteLockTest, WaitsForAnotherProcessAndReportsTheWait) {
  Holder holder(file, 7);
  int waits = 0;
  const auto lock = ByteLock::take(file, 7, mode, 60s, [&] {
    ++waits;
    holder.kill();
  });
  EXPECT_TRUE(lock);
  EXPECT_EQ(waits, 1);
}

TEST_F(ByteLockTest, IsAcquiredAtOnceIfItIsFree) {
  EXPECT_TRUE(ByteLock::take(file, 7, mode, 60s, [] { ADD_FAILURE() << "a wait"; }));
}

TEST_F(ByteLockTest, FailsAtTheTimeoutIfAnotherHolderRemains) {
  const auto held = ByteLock::tryTake(file, 7, mode);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(ByteLock::take(file, 7, mode, 30ms, {}));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
}

TEST_F(ByteLockTest, DoesNotWaitIfTheTimeoutIsZero) {
  const auto held = ByteLock::tryTake(file, 7, mode);
  EXPECT_FALSE(ByteLock::take(file, 7, mode, 0ms, [] { ADD_FAILURE() << "a wait"; }));
}

TEST_F(ByteLockTest, CreatesItsFileWithTheGivenMode) {
  for (const unsigned wanted : {0600U, 0666U}) {
    const std::string other = folder.file(std::to_string(wanted));
    const auto lock = ByteLock::tryTake(other, 1, wanted);
    struct stat found = {};
    ASSERT_EQ(::stat(other.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, wanted);
  }
}

TEST_F(ByteLockTest, ThrowsIfItsFileIsASymbolicLinkOrCannotBeOpened) {
  EXPECT_THROW(ByteLock::tryTake(folder.file("none/locks"), 1, mode), std::system_error);
  ASSERT_EQ(::symlink(file.c_str(), folder.file("link").c_str()), 0);
  EXPECT_THROW(ByteLock::tryTake(folder.file("link"), 1, mode), std::system_error);
}

TEST_F(ByteLockTest, IsFreeIfItsFileIsMissing) {
  EXPECT_FALSE(ByteLock::isTaken(file, 1));
}

TEST(LockOffset, IsEqualForEqualNamesOnlyAndNeverZero) {
  EXPECT_EQ(lockOffset("receipt 1"), lockOffset("receipt 1"));
  EXPECT_NE(lockOffset("receipt 1"), lockOffset("receipt 2"));
  EXPECT_GT(lockOffset(""), 0);
}

}  // namespace
}  // namespace quordalvane
