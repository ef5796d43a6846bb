#include "backends/posix/AccessoryNotices.h"

#include <linux/netlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "backends/posix/Deadline.h"

namespace quordalvane::posix {
namespace {

// Returns whose notices to receive: the notices of udev if udev runs, otherwise the notices of the
// kernel. An ordinary user can open the device file only after udev has set the file's group and
// permissions. After that, udev repeats the kernel's notice.
unsigned senders() {
  constexpr unsigned kernel = 1;
  constexpr unsigned udev = 2;
  return ::access("/run/udev/control", F_OK) == 0 ? udev : kernel;
}

int openSocket() {
  const int number =
      ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT);
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = senders();
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  if (number != -1 && ::bind(number, generic, sizeof address) != 0) {
    ::close(number);
    return -1;
  }
  return number;
}

// Returns whether the notice is about a printer. A notice is a sequence of texts such as
// "SUBSYSTEM=usbmisc", each of which ends with a zero byte.
bool isOfPrinter(std::string_view notice) {
  using namespace std::string_view_literals;
  return notice.find("\0SUBSYSTEM=usbmisc\0"sv) != std::string_view::npos ||
         notice.find("\0SUBSYSTEM=tty\0"sv) != std::string_view::npos;
}

}  // namespace

AccessoryNotices::AccessoryNotices() : AccessoryNotices(openSocket()) {}

AccessoryNotices::~AccessoryNotices() {
  if (socket_ != -1) {
    ::close(socket_);
  }
}

bool AccessoryNotices::await(std::chrono::milliseconds time) {
  const SteadyTime deadline = SteadyClock::now() + time;
  bool isThere = take();
  while (!isThere && !hasPassed(deadline)) {
    pollfd awaited{.fd = socket_, .events = POLLIN, .revents = 0};
    const timespec left = timeLeft(deadline);
    ::ppoll(&awaited, 1, &left, nullptr);
    isThere = take();
  }
  return isThere;
}

// Takes all notices that have arrived. Returns true if a notice was about a printer, or if the
// system has dropped notices.
bool AccessoryNotices::take() {
  std::array<char, 8192> notice;
  bool isThere = false;
  while (true) {
    const ssize_t length = ::recv(socket_, notice.data(), notice.size(), MSG_DONTWAIT);
    const bool wasLost = length < 0 && errno == ENOBUFS;
    if (length <= 0 && !wasLost) {
      return isThere;
    }
    isThere = isThere || wasLost || isOfPrinter({notice.data(), static_cast<std::size_t>(length)});
  }
}

}  // namespace quordalvane::posix
