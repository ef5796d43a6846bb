#include "backends/posix/Serial.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "backends/posix/Holders.h"
#include "tests/support/Eventually.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/unit/posix/LineSpeed.h"
#include "tests/unit/posix/OtherProgram.h"
#include "tests/unit/posix/SystemCalls.h"

namespace quordalvane::posix {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// A pseudo-terminal as a serial line. This object keeps the other side open.
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

std::string failure(const std::string& path, const SerialSettings& settings = {}) {
  try {
    openSerial(path, settings);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "it opened";
}

TEST(SerialLine, IsRawWithEightBitsNoParityAndOneStopBitByDefault) {
  const Line line;
  const termios settings = settingsOf(openSerial(line.path()));
  EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(settings.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0U);
  EXPECT_EQ(settings.c_cflag & (CREAD | CLOCAL), static_cast<tcflag_t>(CREAD | CLOCAL));
  EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | IXANY | ICRNL | INLCR | IGNCR | ISTRIP), 0U);
  EXPECT_EQ(settings.c_oflag & OPOST, 0U);
  EXPECT_EQ(settings.c_lflag & (ECHO | ICANON | ISIG | IEXTEN), 0U);
}

TEST(SerialLine, HasTheGivenSpeedOr9600BaudByDefault) {
  const Line line;
  EXPECT_EQ(speedOf(openSerial(line.path()).number()), 9600U);
  EXPECT_EQ(speedOf(openSerial(line.path(), {.baud = 115200}).number()), 115200U);
}

TEST(SerialLine, CanHaveAnySpeed) {
  const Line line;
  for (const unsigned baud : {1200U, 9601U, 74880U, 250000U, 921600U}) {
    EXPECT_EQ(speedOf(openSerial(line.path(), {.baud = baud}).number()), baud);
  }
}

TEST(SerialLine, HasTheSystemsConstantForAStandardSpeed) {
  const std::pair<unsigned, speed_t> numbered[] = {
      {1200, B1200},     {2400, B2400},     {4800, B4800},     {9600, B9600},
      {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
      {230400, B230400}, {460800, B460800}, {921600, B921600},
  };
  const Line line;
  for (const auto& [baud, number] : numbered) {
    const termios settings = settingsOf(openSerial(line.path(), {.baud = baud}));
    EXPECT_EQ(::cfgetospeed(&settings), number) << baud;
  }
}

TEST(SerialLine, HasTheGivenFlowControl) {
  const Line line;
  EXPECT_NE(settingsOf(openSerial(line.path(), {.flow = Flow::RtsCts})).c_cflag & CRTSCTS, 0U);
  const termios soft = settingsOf(openSerial(line.path(), {.flow = Flow::XonXoff}));
  EXPECT_NE(soft.c_iflag & IXON, 0U);
  EXPECT_EQ(soft.c_iflag & IXOFF, 0U);
  EXPECT_EQ(soft.c_cc[VSTART], 0x11);
  EXPECT_EQ(soft.c_cc[VSTOP], 0x13);
  EXPECT_EQ(settingsOf(openSerial(line.path())).c_cflag & CRTSCTS, 0U);
}

// A pseudo-terminal has no parity bit and always eight bits, but it keeps the kind of the parity.
TEST(SerialLine, SetsTheKindOfTheParity) {
  const std::pair<Parity, tcflag_t> kinds[] = {
      {Parity::None, 0},       {Parity::Even, 0},
      {Parity::Odd, PARODD},   {Parity::Mark, PARODD | CMSPAR},
      {Parity::Space, CMSPAR},
  };
  const Line line;
  for (const auto& [parity, flags] : kinds) {
    const Descriptor opened = openSerial(line.path(), {.bits = 7, .parity = parity});
    EXPECT_EQ(settingsOf(opened).c_cflag & (PARODD | CMSPAR), flags);
  }
}

TEST(SerialLine, CanHaveTwoStopBits) {
  const Line line;
  EXPECT_NE(settingsOf(openSerial(line.path(), {.stop = 2})).c_cflag & CSTOPB, 0U);
}

TEST(SerialLine, LosesNoByteIfThePrinterStopsTheFlow) {
  const auto terminal = test::openPseudoTerminal();
  const Descriptor printer(terminal.master, Descriptor::Kind::Terminal);
  const Descriptor line = openSerial(terminal.line, {.flow = Flow::XonXoff});
  const std::uint8_t stop = 0x13;
  const std::uint8_t go = 0x11;
  const std::string job = "0123456789";
  ASSERT_EQ(printer.send(&stop, 1), 1);
  std::uint8_t heard = 0;
  const auto send = [&](char c) {
    const auto byte = static_cast<std::uint8_t>(c);
    return line.send(&byte, 1);
  };
  ASSERT_TRUE(test::eventually([&] { return line.pollUntil(POLLOUT, SteadyTime{}) == 0; }));
  EXPECT_EQ(send(job.front()), -1);
  EXPECT_EQ(errno, EAGAIN);
  EXPECT_EQ(line.receive(&heard, 1), -1) << "the stop itself is not for the reader";
  ASSERT_EQ(printer.send(&go, 1), 1);
  ASSERT_NE(line.pollUntil(POLLOUT, deadlineIn(10)), 0);
  std::string printed;
  for (const char c : job) {
    ASSERT_EQ(send(c), 1);
    ASSERT_EQ(printer.receiveUntil(&heard, 1, deadlineIn(10)), 1);
    printed += static_cast<char>(heard);
  }
  EXPECT_EQ(printed, job);
}

TEST(SerialLine, RefusesASecondProgramWithTheReason) {
  const Line line;
  const Descriptor first = openSerial(line.path());
  EXPECT_THAT(failure(line.path()), AllOf(HasSubstr(line.path()), HasSubstr("in use by")));
  try {
    openSerial(line.path());
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::device_or_resource_busy);
  }
}

TEST(SerialLine, RemainsLockedByTheFirstProgramAfterARefusal) {
  const Line line;
  const Descriptor first = openSerial(line.path());
  failure(line.path());
  EXPECT_THAT(failure(line.path()), HasSubstr("in use by"));
}

bool isExclusive(const Descriptor& line) {
  int answer = -1;
  EXPECT_EQ(::ioctl(line.number(), TIOCGEXCL, &answer), 0);
  return answer != 0;
}

Descriptor watcherOf(const std::string& path) {
  return {::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC),
          Descriptor::Kind::Terminal};
}

TEST(SerialLine, DoesNotSetThePseudoTerminalExclusive) {
  const Line line;
  const Descriptor first = openSerial(line.path());
  EXPECT_FALSE(isExclusive(first));
}

TEST(SerialLine, CanBeOpenedAgainAfterItsClose) {
  const Line line;
  { const Descriptor first = openSerial(line.path()); }
  EXPECT_EQ(failure(line.path()), "it opened");
}

/// A console of the machine, which hardly any program uses. It has one speed, 38400, and no flow
/// control by wires.
class Console {
 public:
  explicit Console(std::string path) : path_(std::move(path)), watcher_(watcherOf(path_)) {}

  const std::string& path() const { return path_; }
  bool isFree() const { return watcher_.number() >= 0 && !isInExclusiveMode(); }
  bool isInExclusiveMode() const { return isExclusive(watcher_); }

 private:
  const std::string path_;
  const Descriptor watcher_;
};

TEST(SerialLine, KeepsAHardwareTerminalInExclusiveModeUntilTheTerminalIsClosed) {
  const Console console("/dev/tty63");
  if (!console.isFree()) {
    GTEST_SKIP() << "this user cannot open " << console.path();
  }
  {
    const Descriptor first = openSerial(console.path(), {.baud = 38400});
    EXPECT_TRUE(console.isInExclusiveMode());
  }
  EXPECT_FALSE(console.isInExclusiveMode());
}

TEST(SerialLine, RefusesALineWhoseSpeedIsWrongByThreePercent) {
  const Console console("/dev/tty62");
  if (!console.isFree()) {
    GTEST_SKIP() << "this user cannot open " << console.path();
  }
  for (const unsigned closeEnough : {37282U, 38400U, 39587U}) {
    EXPECT_EQ(failure(console.path(), {.baud = closeEnough}), "it opened");
  }
  for (const unsigned tooFar : {9600U, 37281U, 39588U, 115200U, 4000000U}) {
    EXPECT_EQ(failure(console.path(), {.baud = tooFar}),
              console.path() + ": the line does not run at " + std::to_string(tooFar) +
                  " baud: Invalid argument");
  }
}

TEST(SerialLine, RefusesALineWithoutTheGivenFlowControl) {
  const Console console("/dev/tty61");
  if (!console.isFree()) {
    GTEST_SKIP() << "this user cannot open " << console.path();
  }
  EXPECT_EQ(failure(console.path(), {.baud = 38400, .flow = Flow::RtsCts}),
            console.path() + ": the line has no flow control by RTS and CTS: Invalid argument");
}

TEST(SerialLine, OpensEvenIfTheDriverHasNoExclusiveMode) {
  const Console console("/dev/tty60");
  if (!console.isFree()) {
    GTEST_SKIP() << "this user cannot open " << console.path();
  }
  constexpr unsigned long requests[] = {TIOCGEXCL, TIOCEXCL};
  for (const unsigned long request : requests) {
    const AnsweredIoctl driver(request, unknownRequest);
    EXPECT_EQ(failure(console.path(), {.baud = 38400}), "it opened");
  }
}

bool makeExclusive(int line) {
  return ::ioctl(line, TIOCEXCL) == 0;
}

TEST(SerialLine, NamesTheProgramThatUsesTheLine) {
  const Line line;
  const OtherProgram other(line.path());
  EXPECT_THAT(holdersOf(line.path()), testing::Contains(other.process()));
  EXPECT_THAT(failure(line.path()),
              AllOf(HasSubstr("in use by another program: unit_posix_test"),
                    HasSubstr("(process " + std::to_string(other.process()) + ")")));
}

TEST(SerialLine, IdentifiesAProgramWithoutANameByItsProcess) {
  const Line line;
  const OtherProgram other(line.path(),
                           [](int held) { return lock(held) && ::prctl(PR_SET_NAME, "") == 0; });
  EXPECT_THAT(failure(line.path()), HasSubstr("another program: a program (process "));
}

TEST(SerialLine, NamesBothProgramsThatUseTheLine) {
  const Line line;
  const OtherProgram one(line.path());
  const OtherProgram other(line.path(), [](int) { return true; });
  EXPECT_THAT(failure(line.path()),
              AllOf(HasSubstr("), "), HasSubstr("(process " + std::to_string(one.process()) + ")"),
                    HasSubstr("(process " + std::to_string(other.process()) + ")")));
}

TEST(SerialLine, IsRefusedEvenToRootDuringExclusiveUseByAnotherProgram) {
  const Line line;
  const OtherProgram other(line.path(), makeExclusive);
  EXPECT_THAT(failure(line.path()), HasSubstr("in use by another program"));
}

TEST(SerialLine, FindsAProgramOfAnotherUserByTheLockOnTheLine) {
  const Line line;
  const OtherProgram other(line.path());
  const pid_t child = ::fork();
  if (child == 0) {
    constexpr uid_t nobody = 65534;
    if (::setuid(nobody) != 0) {
      ::_exit(2);
    }
    const auto found = holdersOf(line.path());
    ::_exit(std::count(found.begin(), found.end(), other.process()) == 1 ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  if (WEXITSTATUS(status) == 2) {
    GTEST_SKIP() << "only root can become another user";
  }
  EXPECT_EQ(status, 0);
}

TEST(SerialLine, RootCanOpenALineThatAKilledProgramLeftInExclusiveMode) {
  const Line line;
  const int left = ::open(line.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(::ioctl(left, TIOCEXCL), 0);
  ::close(left);
  const Descriptor again(::open(line.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC),
                         Descriptor::Kind::Terminal);
  if (again.number() < 0) {
    GTEST_SKIP() << "the system keeps an ordinary user out, who cannot clear it";
  }
  EXPECT_EQ(failure(line.path()), "it opened");
}

TEST(SerialLine, IsClosedOnExecAndDoesNotBlock) {
  const Line line;
  const Descriptor opened = openSerial(line.path());
  EXPECT_EQ(::fcntl(opened.number(), F_GETFD), FD_CLOEXEC);
  EXPECT_NE(::fcntl(opened.number(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(SerialLine, DoesNotBecomeTheControllingTerminal) {
  const Line line;
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();  // from now on, an opened terminal can become the controlling terminal
    const Descriptor opened = openSerial(line.path());
    const bool none = ::open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 && errno == ENXIO;
    ::_exit(none ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST(SerialLine, TheErrorOfAPlainFileSaysThatItIsNoSerialLine) {
  std::string path = testing::TempDir() + "plainXXXXXX";
  const Descriptor file(::mkstemp(path.data()), Descriptor::Kind::Terminal);
  EXPECT_THAT(failure(path), AllOf(HasSubstr(path), HasSubstr("not a serial line")));
  ::unlink(path.c_str());
}

TEST(SerialLine, TheErrorOfAnUnusablePathNamesThePathAndTheReason) {
  EXPECT_THAT(failure("/tmp"), AllOf(HasSubstr("/tmp"), HasSubstr("Is a directory")));
  EXPECT_THAT(failure("/dev/null"), AllOf(HasSubstr("/dev/null"), HasSubstr("not a serial line")));
  EXPECT_THAT(failure("/dev/there-is-none"), HasSubstr("No such file"));
}

}  // namespace
}  // namespace quordalvane::posix
