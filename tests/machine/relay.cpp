// The printer at the other end of the USB cable: carries bytes between the gadget's node and a
// virtual printer's socket, and may pull the cable after so many bytes.
//
//     relay NODE SOCKET COUNT_FILE [PULL_AFTER UDC_FILE]
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

int connectTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int number = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  return ::connect(number, generic, sizeof address) == 0 ? number : -1;
}

// Writes all of it, waiting for space; false if the other side has ended.
bool writeAll(int to, const char* bytes, std::size_t length) {
  while (length > 0) {
    const ssize_t count = ::write(to, bytes, length);
    if (count < 0 && errno != EAGAIN && errno != EINTR) {
      return false;
    }
    if (count > 0) {
      bytes += count;
      length -= static_cast<std::size_t>(count);
    } else {
      pollfd space{.fd = to, .events = POLLOUT, .revents = 0};
      ::poll(&space, 1, -1);
    }
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4 && count != 6) {
    return 2;
  }
  const int gadget = ::open(arguments[1], O_RDWR | O_NONBLOCK | O_CLOEXEC);
  const int printer = connectTo(arguments[2]);
  const std::size_t limit = count == 6 ? std::strtoul(arguments[4], nullptr, 10) : SIZE_MAX;
  if (gadget < 0 || printer < 0) {
    return 1;
  }
  std::size_t carried = 0;
  std::array<char, 1024> buffer;
  while (true) {
    pollfd ends[] = {{.fd = gadget, .events = POLLIN, .revents = 0},
                     {.fd = printer, .events = POLLIN, .revents = 0}};
    ::poll(ends, 2, -1);
    if (ends[0].revents != 0) {
      const ssize_t got = ::read(gadget, buffer.data(), std::min(buffer.size(), limit - carried));
      if (got > 0) {
        carried += static_cast<std::size_t>(got);
        std::ofstream(arguments[3]) << carried << "\n";
        if (!writeAll(printer, buffer.data(), static_cast<std::size_t>(got))) {
          return 0;
        }
      } else if (got < 0 && errno != EAGAIN && errno != EINTR) {
        return 0;
      }
      if (carried >= limit) {
        ::close(gadget);
        std::ofstream(arguments[5]) << "\n";
        return 0;
      }
    }
    if (ends[1].revents != 0) {
      const ssize_t got = ::read(printer, buffer.data(), buffer.size());
      if (got <= 0 || !writeAll(gadget, buffer.data(), static_cast<std::size_t>(got))) {
        return 0;
      }
    }
  }
}
