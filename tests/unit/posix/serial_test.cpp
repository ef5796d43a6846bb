#include "backends/posix/Serial.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "tests/support/PseudoTerminal.h"

namespace quordalvane::posix {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// A line whose other end is in this process.
class Line {
 public:
  const std::string& path() const { return terminal_.line; }

 private:
  const test::PseudoTerminal terminal_ = test::openPseudoTerminal();
  const Descriptor master_{terminal_.master, Descriptor::Kind::Terminal};
};

termios settingsOf(const Descriptor& line) {
  termios settings{};
  EXPECT_EQ(::tcgetattr(line.number(), &settings), 0);
  return settings;
}

std::string failure(const std::string& path, unsigned baud = defaultBaudRate) {
  try {
    openSerial(path, baud);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "it opened";
}

TEST(Serial, OpensALineRawWithEightBitsNoParityAndOneStopBit) {
  const Line line;
  const termios settings = settingsOf(openSerial(line.path()));
  EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(settings.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0U);
  EXPECT_EQ(settings.c_cflag & (CREAD | CLOCAL), static_cast<tcflag_t>(CREAD | CLOCAL));
  EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | IXANY | ICRNL | INLCR | IGNCR | ISTRIP), 0U);
  EXPECT_EQ(settings.c_oflag & OPOST, 0U);
  EXPECT_EQ(settings.c_lflag & (ECHO | ICANON | ISIG | IEXTEN), 0U);
}

TEST(Serial, SetsTheRateThatIsAskedForAndItsOwnOtherwise) {
  const Line line;
  const termios usual = settingsOf(openSerial(line.path()));
  EXPECT_EQ(::cfgetospeed(&usual), static_cast<speed_t>(B9600));
  const termios fast = settingsOf(openSerial(line.path(), 115200));
  EXPECT_EQ(::cfgetospeed(&fast), static_cast<speed_t>(B115200));
  EXPECT_EQ(::cfgetispeed(&fast), static_cast<speed_t>(B115200));
}

TEST(Serial, OpensALineAtEveryRateThatItNames) {
  const Line line;
  const auto rates = baudRates();
  EXPECT_TRUE(std::is_sorted(rates.begin(), rates.end()));
  EXPECT_GE(rates.size(), 8U);
  for (const unsigned rate : rates) {
    EXPECT_EQ(failure(line.path(), rate), "it opened") << rate;
  }
}

TEST(Serial, RefusesARateThatItDoesNotName) {
  const Line line;
  EXPECT_THAT(failure(line.path(), 9601), HasSubstr("9601"));
  EXPECT_THAT(failure(line.path(), 0), HasSubstr("0"));
}

TEST(Serial, ClosesOnExecAndDoesNotBlock) {
  const Line line;
  const Descriptor opened = openSerial(line.path());
  EXPECT_EQ(::fcntl(opened.number(), F_GETFD), FD_CLOEXEC);
  EXPECT_NE(::fcntl(opened.number(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(Serial, DoesNotBecomeTheControllingTerminal) {
  const Line line;
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();  // a leader without a terminal would get the first one that it opens
    const Descriptor opened = openSerial(line.path());
    const bool none = ::open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 && errno == ENXIO;
    ::_exit(none ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST(Serial, APlainFileIsAnErrorThatSaysSo) {
  std::string path = testing::TempDir() + "plainXXXXXX";
  const Descriptor file(::mkstemp(path.data()), Descriptor::Kind::Terminal);
  EXPECT_THAT(failure(path), AllOf(HasSubstr(path), HasSubstr("not a serial line")));
  ::unlink(path.c_str());
}

TEST(Serial, AFolderADeviceOfAnotherKindAndNothingAreErrorsThatNameThem) {
  EXPECT_THAT(failure("/tmp"), AllOf(HasSubstr("/tmp"), HasSubstr("Is a directory")));
  EXPECT_THAT(failure("/dev/null"), AllOf(HasSubstr("/dev/null"), HasSubstr("not a serial line")));
  EXPECT_THAT(failure("/dev/there-is-none"), HasSubstr("No such file"));
}

}  // namespace
}  // namespace quordalvane::posix
