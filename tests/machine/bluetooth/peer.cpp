// The printer at the other end of a Bluetooth link: switches the adapter hci1 on, carries bytes
// between the socket of a virtual printer and the connections to a channel of the adapter, and may
// switch the adapter off after a number of bytes.
//
//     peer ADDRESS CHANNEL SOCKET COUNT_FILE [SWITCH_OFF_AFTER]
#include <poll.h>
#include <sys/un.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "tests/machine/bluetooth/Rfcomm.h"

namespace machine = quordalvane::machine;

namespace {

int connectTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int number = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  return ::connect(number, generic, sizeof address) == 0 ? number : -1;
}

bool writeAll(int to, const char* bytes, std::size_t length) {
  while (length > 0) {
    const ssize_t count = ::write(to, bytes, length);
    if (count <= 0) {
      return false;
    }
    bytes += count;
    length -= static_cast<std::size_t>(count);
  }
  return true;
}

// Moves the available bytes, at most `limit`; returns their number, 0 at the end.
std::size_t carry(int from, int to, std::size_t limit) {
  std::array<char, 1024> buffer;
  const ssize_t got = ::read(from, buffer.data(), std::min(buffer.size(), limit));
  const bool isCarried = got > 0 && writeAll(to, buffer.data(), static_cast<std::size_t>(got));
  return isCarried ? static_cast<std::size_t>(got) : 0;
}

}  // namespace

int main(int count, char** arguments) {
  constexpr int adapter = 1;
  if (count != 5 && count != 6) {
    return 2;
  }
  machine::setPowered(adapter, true);
  const auto channel = static_cast<std::uint8_t>(std::strtoul(arguments[2], nullptr, 10));
  const int listener = machine::listenAt(arguments[1], channel);
  const std::size_t limit = count == 6 ? std::strtoul(arguments[5], nullptr, 10) : SIZE_MAX;
  std::size_t carried = 0;
  std::ofstream(arguments[4]) << carried << "\n";
  for (int host = 0; (host = ::accept(listener, nullptr, nullptr)) >= 0; ::close(host)) {
    const int printer = connectTo(arguments[3]);
    for (bool isOpen = printer >= 0; isOpen;) {
      pollfd ends[] = {{.fd = host, .events = POLLIN, .revents = 0},
                       {.fd = printer, .events = POLLIN, .revents = 0}};
      ::poll(ends, 2, -1);
      if (ends[0].revents != 0) {
        const std::size_t moved = carry(host, printer, limit - carried);
        carried += moved;
        isOpen = moved > 0;
        std::ofstream(arguments[4]) << carried << "\n";
      }
      if (carried >= limit) {
        machine::setPowered(adapter, false);
        return 0;
      }
      if (isOpen && ends[1].revents != 0) {
        isOpen = carry(printer, host, SIZE_MAX) > 0;
      }
    }
    ::close(printer);
  }
  return 1;
}
