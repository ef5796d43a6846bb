#include "tools/cups-backend/Release.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "journal/History.h"
#include "tests/support/TemporaryFolder.h"

namespace quordalvane::cups {
namespace {

constexpr std::int64_t told = 1'000'000'000'000;

class ReleaseOfAHeldJob : public testing::Test {
 protected:
  /// Makes the record of a job, as if the scheduler had written it at the time `millis`. Returns
  /// the path of the record.
  std::filesystem::path recordOf(std::int64_t millis) {
    const std::filesystem::path file = folder.file("c00001");
    std::ofstream(file) << "job";
    const timespec time{millis / 1000, millis % 1000 * 1'000'000};
    const timespec times[2] = {time, time};
    EXPECT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    return file;
  }

  test::TemporaryFolder folder;
};

TEST_F(ReleaseOfAHeldJob, IsAttributedToAPersonIfTheSchedulerThatHeldTheJobStillRuns) {
  EXPECT_TRUE(isReleased(told, told - 1, {}));
}

TEST_F(ReleaseOfAHeldJob, IsAttributedToAPersonIfTheSchedulerRecordedTheHoldBeforeItsRestart) {
  EXPECT_TRUE(isReleased(told, told + 90'000, recordOf(told + 30'000)));
}

TEST_F(ReleaseOfAHeldJob, IsUncertainIfTheRecordIsOlderThanTheHold) {
  EXPECT_FALSE(isReleased(told, told + 90'000, recordOf(told - 1)));
  EXPECT_FALSE(isReleased(told, told + 90'000, recordOf(told + 500)));
}

TEST_F(ReleaseOfAHeldJob, IsUncertainIfTheNewSchedulerHasWrittenTheRecord) {
  EXPECT_FALSE(isReleased(told, told + 90'000, recordOf(told + 90'001)));
}

TEST_F(ReleaseOfAHeldJob, IsUncertainWithoutARecordOrAScheduler) {
  EXPECT_FALSE(isReleased(told, told + 90'000, {}));
  EXPECT_FALSE(isReleased(told, told + 90'000, folder.file("c00001")));
  EXPECT_FALSE(isReleased(told, std::nullopt, recordOf(told + 30'000)));
}

TEST_F(ReleaseOfAHeldJob, TheStartTimeOfTheSchedulerIsRoundedUpToTheClockTick) {
  const auto start = schedulerStart(::getpid());
  ASSERT_TRUE(start);
  const std::int64_t tick = 1000 / ::sysconf(_SC_CLK_TCK);
  EXPECT_LE(*start, millisecondsNow() + tick);
  EXPECT_GT(*start, millisecondsNow() - 600'000);
  EXPECT_FALSE(schedulerStart(-1));
}

}  // namespace
}  // namespace quordalvane::cups
