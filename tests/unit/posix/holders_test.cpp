#include "backends/posix/Holders.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "tests/support/SleepingThread.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/posix/OtherProgram.h"

namespace quordalvane::posix {
namespace {

using testing::ElementsAre;

TEST(Holders, AreOnlyTheProgramsThatHoldThisFile) {
  const test::TemporaryFolder folder;
  const std::string one = folder.file("one");
  const std::string other = folder.file("other");
  std::ofstream(one) << "";
  std::ofstream(other) << "";
  const OtherProgram holder(one);
  const OtherProgram holderOfTheOther(other);
  const int waiting = ::open(other.c_str(), O_RDWR | O_CLOEXEC);
  // In the system's list of locks, a program that waits for a lock has a line of another form than
  // a program that has the lock.
  test::SleepingThread thread([waiting] { EXPECT_EQ(::flock(waiting, LOCK_EX), 0); });
  thread.awaitSleep();
  EXPECT_THAT(holdersOf(one), ElementsAre(holder.process()));
  EXPECT_THAT(holdersOf(other), ElementsAre(holderOfTheOther.process()));
  ::kill(holderOfTheOther.process(), SIGKILL);
  thread.join();
  ::close(waiting);
}

}  // namespace
}  // namespace quordalvane::posix
