#include "locks/DeviceLock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <system_error>

#include "tests/support/TemporaryFolder.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;

TEST(DeviceLock, IsSeparateForEachDevice) {
  const std::string device = "test:" + std::to_string(::getpid());
  const auto lock = takeDevice(device, 0ms);
  ASSERT_TRUE(lock);
  int waits = 0;
  EXPECT_FALSE(takeDevice(device, 20ms, [&] { ++waits; }));
  EXPECT_EQ(waits, 1);
  EXPECT_TRUE(takeDevice(device + "-other", 0ms));
}

class LockFolder : public testing::Test {
 protected:
  LockFolder() {
    ::setenv("XDG_RUNTIME_DIR", folder.file("runtime").c_str(), 1);
    ::setenv("TMPDIR", folder.file("").c_str(), 1);
  }
  ~LockFolder() override {
    ::unsetenv("XDG_RUNTIME_DIR");
    ::unsetenv("TMPDIR");
  }

  const test::TemporaryFolder folder;
};

TEST_F(LockFolder, IsTheSharedFolderOfAllUsersIfItIsWritable) {
  ASSERT_EQ(::mkdir(folder.file("shared").c_str(), 0700), 0);
  ASSERT_EQ(::chmod(folder.file("shared").c_str(), 01777), 0);
  EXPECT_EQ(deviceLockFile(folder.file("shared")), folder.file("shared/quorport.locks"));
}

TEST_F(LockFolder, IsThisUsersRuntimeFolderIfTheSharedFolderIsUnusable) {
  EXPECT_EQ(deviceLockFile(folder.file("none")), folder.file("runtime/quorport.locks"));
  ASSERT_EQ(::mkdir(folder.file("closed").c_str(), 0755), 0);
  EXPECT_EQ(deviceLockFile(folder.file("closed")), folder.file("runtime/quorport.locks"));
}

TEST_F(LockFolder, IsAPrivateFolderIfTheRuntimeFolderIsUnknown) {
  ::unsetenv("XDG_RUNTIME_DIR");
  const auto file = deviceLockFile(folder.file("none"));
  const std::string own = folder.file("quorport-" + std::to_string(::geteuid()));
  EXPECT_EQ(file, own + "/quorport.locks");
  struct stat found = {};
  ASSERT_EQ(::stat(own.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0700U);
}

TEST_F(LockFolder, IsRefusedIfItIsASymbolicLink) {
  ::unsetenv("XDG_RUNTIME_DIR");
  const std::string own = folder.file("quorport-" + std::to_string(::geteuid()));
  ASSERT_EQ(::symlink("/", own.c_str()), 0);
  EXPECT_THROW(deviceLockFile(folder.file("none")), std::system_error);
}

}  // namespace
}  // namespace quordalvane
