#include "backends/posix/Serial.h"

// This file includes the kernel's header and not <termios.h>, because a program cannot include
// both. The kernel's structure has a field for any speed; <termios.h> has constants for some speeds
// only.
#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "backends/posix/Holders.h"

namespace quordalvane::posix {
namespace {

[[noreturn]] void fail(int code, const std::string& text) {
  throw std::system_error(code, std::generic_category(), text);
}

// Returns the flag for a speed. If the header has a constant for the speed, returns this constant,
// because some programs can read the speed only in this form.
tcflag_t speedFlag(unsigned baud) {
  constexpr std::pair<unsigned, tcflag_t> numbered[] = {
      {1200, B1200},     {2400, B2400},     {4800, B4800},     {9600, B9600},
      {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
      {230400, B230400}, {460800, B460800}, {921600, B921600},
  };
  for (const auto& [speed, flag] : numbered) {
    if (speed == baud) {
      return flag;
    }
  }
  return BOTHER;
}

tcflag_t parityFlags(Parity parity) {
  switch (parity) {
    case Parity::None:
      return 0;
    case Parity::Even:
      return PARENB;
    case Parity::Odd:
      return PARENB | PARODD;
    case Parity::Mark:
      return PARENB | PARODD | CMSPAR;
    case Parity::Space:
      return PARENB | CMSPAR;
  }
  return 0;
}

termios2 rawSettings(const SerialSettings& wanted) {
  termios2 raw{};
  raw.c_cflag = CREAD | CLOCAL | HUPCL | speedFlag(wanted.baud) | (wanted.bits == 7 ? CS7 : CS8) |
                parityFlags(wanted.parity) | (wanted.stop == 2 ? CSTOPB : 0U) |
                (wanted.flow == Flow::RtsCts ? CRTSCTS : 0U);
  raw.c_iflag = wanted.flow == Flow::XonXoff ? IXON : 0U;
  raw.c_cc[VSTART] = 0x11;
  raw.c_cc[VSTOP] = 0x13;
  // With a minimum of one byte, a read returns 0 bytes only after a hang-up, never for an empty
  // input.
  raw.c_cc[VMIN] = 1;
  raw.c_ispeed = wanted.baud;
  raw.c_ospeed = wanted.baud;
  return raw;
}

// Returns whether the line's speed is close enough to the wanted one. The receiver samples the
// middle of each bit, so a byte of ten bits is lost if the speeds differ by 5 %.
bool isCloseTo(unsigned baud, unsigned wanted) {
  const std::uint64_t difference = std::max(baud, wanted) - std::min(baud, wanted);
  return 100 * difference / wanted < 3;
}

void configure(int number, const SerialSettings& wanted, const std::string& path) {
  termios2 settings = rawSettings(wanted);
  if (::ioctl(number, TCSETS2, &settings) != 0 || ::ioctl(number, TCGETS2, &settings) != 0) {
    fail(errno, path);
  }
  if (!isCloseTo(settings.c_ospeed, wanted.baud)) {
    fail(EINVAL, path + ": the line does not run at " + std::to_string(wanted.baud) + " baud");
  }
  if (wanted.flow == Flow::RtsCts && (settings.c_cflag & CRTSCTS) == 0) {
    fail(EINVAL, path + ": the line has no flow control by RTS and CTS");
  }
}

[[noreturn]] void failInUse(const std::string& path) {
  fail(EBUSY, path + ": in use by " + holderInWords(path));
}

// Returns whether the descriptor is a pseudo-terminal. A pseudo-terminal must not be set to
// exclusive mode. If the program were killed, the pseudo-terminal would remain in this mode as long
// as its other side is open, and nobody could open it. The advisory lock alone reserves a
// pseudo-terminal; the system releases the lock when the program ends.
bool isPseudoTerminal(int number) {
  constexpr unsigned first = 136;
  constexpr unsigned last = 143;
  struct stat facts {};
  return ::fstat(number, &facts) == 0 && major(facts.st_rdev) >= first &&
         major(facts.st_rdev) <= last;
}

void giveBack(int number) {
  ::ioctl(number, TIOCNXCL);
}

// Reserves the line for this program, or throws. If the line is in exclusive mode but no process
// has it open, the program that set the mode was killed. The mode is then ignored.
void reserve(Descriptor& line, const std::string& path) {
  int isExclusive = 0;
  if (::flock(line.number(), LOCK_EX | LOCK_NB) != 0 ||
      (::ioctl(line.number(), TIOCGEXCL, &isExclusive) == 0 && isExclusive != 0 &&
       !holdersOf(path).empty())) {
    failInUse(path);
  }
  if (!isPseudoTerminal(line.number()) && ::ioctl(line.number(), TIOCEXCL) == 0) {
    line.setBeforeClose(giveBack);
  }
}

}  // namespace

std::vector<unsigned> usualBaudRates() {
  return {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};
}

Descriptor openSerial(const std::string& path, const SerialSettings& settings) {
  const int number = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (number == -1 && errno == EBUSY) {
    failInUse(path);
  }
  if (number == -1) {
    fail(errno, path);
  }
  Descriptor line(number, Descriptor::Kind::Terminal);
  if (::isatty(number) == 0) {
    fail(ENOTTY, path + ": not a serial line");
  }
  reserve(line, path);
  configure(number, settings, path);
  return line;
}

}  // namespace quordalvane::posix
