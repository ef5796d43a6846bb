#include "backends/posix/Serial.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace quordalvane::posix {
namespace {

struct Rate {
  unsigned baud;
  speed_t code;
};

constexpr std::array rates = {
    Rate{1200, B1200},     Rate{2400, B2400},     Rate{4800, B4800},     Rate{9600, B9600},
    Rate{19200, B19200},   Rate{38400, B38400},   Rate{57600, B57600},   Rate{115200, B115200},
    Rate{230400, B230400}, Rate{460800, B460800}, Rate{921600, B921600},
};

speed_t codeOf(unsigned baud) {
  const auto* const found =
      std::find_if(rates.begin(), rates.end(), [=](const Rate& rate) { return rate.baud == baud; });
  if (found == rates.end()) {
    throw std::invalid_argument(std::to_string(baud) + " is not a baud rate");
  }
  return found->code;
}

void setRaw(int number, speed_t speed, const std::string& path) {
  termios settings{};
  if (::tcgetattr(number, &settings) != 0) {
    throw std::system_error(ENOTTY, std::generic_category(), path + ": not a serial line");
  }
  ::cfmakeraw(&settings);  // 8 data bits and no parity included
  settings.c_cflag |= CLOCAL | CREAD;
  settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
  settings.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY);
  // With a minimum of one byte a read of none means a hang-up, not an empty input.
  settings.c_cc[VMIN] = 1;
  settings.c_cc[VTIME] = 0;
  ::cfsetspeed(&settings, speed);
  if (::tcsetattr(number, TCSANOW, &settings) != 0) {
    throw std::system_error(errno, std::generic_category(), path);
  }
}

}  // namespace

std::vector<unsigned> baudRates() {
  std::vector<unsigned> result(rates.size());
  std::transform(rates.begin(), rates.end(), result.begin(),
                 [](const Rate& rate) { return rate.baud; });
  return result;
}

Descriptor openSerial(const std::string& path, unsigned baud) {
  const speed_t speed = codeOf(baud);
  const int number = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (number < 0) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  Descriptor line(number, Descriptor::Kind::Terminal);
  setRaw(number, speed, path);
  return line;
}

}  // namespace quordalvane::posix
