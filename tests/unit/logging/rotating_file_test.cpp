#include "logging/RotatingFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <limits>
#include <ranges>

#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using test::contentsOf;

class RotatingFileTest : public testing::Test {
 protected:
  static void put(RotatingFile& file, std::initializer_list<const char*> lines) {
    for (const char* line : lines) {
      file.append(line);
    }
    file.flush();
  }

  std::string contents(const std::string& suffix = "") const { return contentsOf(path_ + suffix); }
  bool exists(const std::string& suffix) const { return std::filesystem::exists(path_ + suffix); }

  test::TemporaryFolder folder_;
  std::string path_ = folder_.file("port.log");
};

TEST_F(RotatingFileTest, WritesLinesInOrder) {
  RotatingFile file(path_, {});
  put(file, {"one\n", "two\n"});
  put(file, {"three\n"});
  EXPECT_EQ(contents(), "one\ntwo\nthree\n");
}

TEST_F(RotatingFileTest, WritesItsBufferAfter256KiBEvenWithoutAFlush) {
  RotatingFile file(path_, {});
  const std::string line = std::string(1023, 'x') + '\n';
  for (int count = 0; count < 255; ++count) {
    file.append(line);
  }
  EXPECT_EQ(std::filesystem::file_size(path_), 0U);
  file.append(line);
  EXPECT_EQ(std::filesystem::file_size(path_), 262'144U);
}

TEST_F(RotatingFileTest, StartsANewFileWhenALineDoesNotFit) {
  RotatingFile file(path_, {.maximumBytes = 8, .keptFiles = 5});
  put(file, {"aaa\n", "bbb\n", "ccc\n"});
  EXPECT_EQ(contents(".1"), "aaa\nbbb\n");
  EXPECT_EQ(contents(), "ccc\n");
}

TEST_F(RotatingFileTest, KeepsTheNewestFilesAndDeletesTheOldest) {
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 2});
  put(file, {"aaa\n", "bbb\n", "ccc\n", "ddd\n"});
  EXPECT_EQ(contents(), "ddd\n");
  EXPECT_EQ(contents(".1"), "ccc\n");
  EXPECT_EQ(contents(".2"), "bbb\n");
  EXPECT_FALSE(exists(".3"));
}

TEST_F(RotatingFileTest, RotatesQuicklyEvenIfTheLimitOfKeptFilesIsHuge) {
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = std::numeric_limits<unsigned>::max()});
  put(file, {"aaa\n", "bbb\n", "ccc\n"});
  EXPECT_EQ(contents(), "ccc\n");
  EXPECT_EQ(contents(".1"), "bbb\n");
  EXPECT_EQ(contents(".2"), "aaa\n");
}

TEST_F(RotatingFileTest, DoesNotRenameFilesAfterAGapInTheirNumbers) {
  std::ofstream(path_ + ".2") << "old\n";
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 3});
  put(file, {"aaa\n", "bbb\n"});
  EXPECT_EQ(contents(".1"), "aaa\n");
  EXPECT_EQ(contents(".2"), "old\n");
  EXPECT_FALSE(exists(".3"));
}

TEST_F(RotatingFileTest, KeepsNoOldFileIfTheLimitOfKeptFilesIsZero) {
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 0});
  put(file, {"aaa\n", "bbb\n", "ccc\n"});
  EXPECT_EQ(contents(), "ccc\n");
  EXPECT_FALSE(exists(".1"));
}

TEST_F(RotatingFileTest, NeverRotatesIfTheMaximumSizeIsZero) {
  RotatingFile file(path_, {.maximumBytes = 0, .keptFiles = 5});
  put(file, {"aaa\n", "bbb\n"});
  EXPECT_EQ(contents(), "aaa\nbbb\n");
}

TEST_F(RotatingFileTest, WritesATooLongLineToASeparateFile) {
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 5});
  put(file, {"a\n", "bbbbbbbb\n", "c\n"});
  EXPECT_EQ(contents(".2"), "a\n");
  EXPECT_EQ(contents(".1"), "bbbbbbbb\n");
  EXPECT_EQ(contents(), "c\n");
}

TEST_F(RotatingFileTest, DoesNotRotateAnEmptyFileBeforeATooLongLine) {
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 5});
  put(file, {"bbbbbbbb\n"});
  EXPECT_EQ(contents(), "bbbbbbbb\n");
  EXPECT_FALSE(exists(".1"));
}

TEST_F(RotatingFileTest, CountsTheContentOfAnExistingFileTowardsTheMaximum) {
  std::ofstream(path_) << "aaa\n";
  RotatingFile file(path_, {.maximumBytes = 6, .keptFiles = 5});
  put(file, {"bbb\n"});
  EXPECT_EQ(contents(".1"), "aaa\n");
  EXPECT_EQ(contents(), "bbb\n");
}

TEST_F(RotatingFileTest, EndsAnUnfinishedLineOfAnExistingFileFirst) {
  for (const std::string torn : {"t", "tor"}) {
    std::ofstream(path_) << torn;
    RotatingFile file(path_, {});
    put(file, {"whole\n"});
    EXPECT_EQ(contents(), torn + "\nwhole\n");
  }
}

TEST_F(RotatingFileTest, CreatesAFileThatOnlyItsOwnerCanRead) {
  const RotatingFile file(path_, {});
  struct stat facts {};
  ASSERT_EQ(::stat(path_.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0600U);
}

TEST_F(RotatingFileTest, IsNotInheritedByExecutedPrograms) {
  const int next = ::dup(0);  // the lowest free descriptor, which the file will take
  ::close(next);
  const RotatingFile file(path_, {});
  EXPECT_EQ(::fcntl(next, F_GETFD), FD_CLOEXEC);
}

std::ptrdiff_t openDescriptors() {
  return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/fd"));
}

TEST_F(RotatingFileTest, HoldsOneDescriptorWhileItIsOpenAndNoneAfterwards) {
  const auto before = openDescriptors();
  {
    RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 1});
    put(file, {"aaa\n", "bbb\n", "ccc\n"});
    EXPECT_EQ(openDescriptors(), before + 1);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(RotatingFileTest, RotatesAtEachLineWhenTheMaximumIsOneByte) {
  RotatingFile file(path_, {.maximumBytes = 1, .keptFiles = 5});
  put(file, {"aaa\n", "bbb\n"});
  EXPECT_EQ(contents(".1"), "aaa\n");
  EXPECT_EQ(contents(), "bbb\n");
}

TEST_F(RotatingFileTest, CreatesItsFileAgainIfItWasMovedAway) {
  RotatingFile file(path_, {});
  put(file, {"one\n"});
  std::filesystem::rename(path_, path_ + ".moved");
  put(file, {"two\n"});
  EXPECT_EQ(contents(".moved"), "one\n");
  EXPECT_EQ(contents(), "two\n");
}

TEST_F(RotatingFileTest, AppendsToAFileThatReplacedItsOwnFile) {
  RotatingFile file(path_, {});
  put(file, {"one\n"});
  std::filesystem::rename(path_, path_ + ".moved");
  std::ofstream(path_) << "another's\n";
  put(file, {"two\n"});
  EXPECT_EQ(contents(".moved"), "one\n");
  EXPECT_EQ(contents(), "another's\ntwo\n");
}

TEST_F(RotatingFileTest, ReportsAMissingFolderAndWritesAgainWhenTheFolderIsBack) {
  const std::string inner = folder_.file("inner");
  std::filesystem::create_directory(inner);
  RotatingFile file(inner + "/port.log", {});
  std::filesystem::remove_all(inner);
  EXPECT_THROW(put(file, {"lost\n"}), std::system_error);
  std::filesystem::create_directory(inner);
  put(file, {"kept\n"});
  EXPECT_EQ(contentsOf(inner + "/port.log"), "kept\n");
}

TEST_F(RotatingFileTest, ThrowsIfItCannotBeOpened) {
  EXPECT_THROW(RotatingFile(folder_.file("none/port.log"), {}), std::system_error);
}

TEST_F(RotatingFileTest, ThrowsIfTheDiskIsFull) {
  RotatingFile file("/dev/full", {});
  try {
    put(file, {"lost\n"});
    FAIL() << "nothing was thrown";
  } catch (const std::system_error& failure) {
    EXPECT_EQ(failure.code(), std::errc::no_space_on_device);
  }
}

/// As long as this object exists, no file of this process can grow beyond the given size.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &saved_);
    const rlimit limit{.rlim_cur = bytes, .rlim_max = saved_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, handler_);
  }

  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit saved_{};
  void (*handler_)(int);
};

TEST_F(RotatingFileTest, LeavesNoIncompleteLineWhenTheDiskIsFull) {
  RotatingFile file(path_, {});
  put(file, {"first\n"});
  {
    const FileSizeLimit limit(15);
    EXPECT_THROW(put(file, {"second\n", "third\n"}), std::system_error);
  }
  EXPECT_EQ(contents(), "first\nsecond\n");
  put(file, {"fourth\n"});
  EXPECT_EQ(contents(), "first\nsecond\nfourth\n");
}

TEST_F(RotatingFileTest, ContinuesToWriteWhileTheProcessCanOpenNoFile) {
  RotatingFile file(path_, {});
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  EXPECT_NO_THROW(put(file, {"one\n"}));
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(contents(), "one\n");
}

TEST_F(RotatingFileTest, ReportsOnceThatItCannotRotateAndThenGrows) {
  std::filesystem::create_directory(path_ + ".1");  // the log cannot be renamed to this name
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 1});
  EXPECT_THROW(put(file, {"aaa\n", "bbb\n"}), std::system_error);
  put(file, {"ccc\n"});
  EXPECT_EQ(contents(), "aaa\nbbb\nccc\n");
}

TEST_F(RotatingFileTest, RotatesRegularFilesOnly) {
  ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
  RotatingFile file(path_, {.maximumBytes = 4, .keptFiles = 1});
  put(file, {"aaa\n", "bbb\n"});
  EXPECT_TRUE(std::filesystem::is_fifo(path_));
  EXPECT_FALSE(exists(".1"));
}

}  // namespace
}  // namespace quordalvane
