#include "backends/posix/Descriptor.h"

#include <linux/lp.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace quordalvane::posix {
namespace {

// How long a receive on a socket waits for bytes. The system measures this time in coarse ticks of
// at most 10 ms, so the wait is not exact. A wait with a limit of at most `patienceAtMost` uses
// `poll`, which is exact.
constexpr std::chrono::milliseconds patience{30};
constexpr std::chrono::milliseconds patienceAtMost{50};

bool makePatient(int socket) {
  const timeval limit{.tv_sec = 0, .tv_usec = std::chrono::microseconds(patience).count()};
  return ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit) == 0;
}

// Calls `transfer`, repeats the call if a signal has interrupted it, and returns its result.
template <typename Transfer>
std::ptrdiff_t uninterrupted(Transfer transfer) {
  std::ptrdiff_t count = transfer();
  while (count < 0 && errno == EINTR) {
    count = transfer();
  }
  return count;
}

bool isUsb(Descriptor::Kind kind) {
  return kind == Descriptor::Kind::UsbPrinter || kind == Descriptor::Kind::MuteUsbPrinter;
}

std::string inWords(int portStatus) {
  if ((portStatus & LP_POUTPA) != 0) {
    return "paper out";
  }
  return (portStatus & LP_PERRORP) == 0   ? "error"
         : (portStatus & LP_PSELECD) == 0 ? "off line"
                                          : "";
}

}  // namespace

Descriptor::Descriptor(int number, Kind kind)
    : number_(number), kind_(kind), isPatient_(kind == Kind::Socket && makePatient(number)) {
  idleOutputCount_ = kind == Kind::Bluetooth ? outputCount() : 0;
}

Descriptor::~Descriptor() {
  if (number_ != -1) {
    if (beforeClose_ != nullptr) {
      beforeClose_(number_);
    }
    ::close(number_);
  }
}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : number_(std::exchange(other.number_, -1)),
      kind_(other.kind_),
      idleOutputCount_(other.idleOutputCount_),
      isPatient_(other.isPatient_),
      beforeClose_(other.beforeClose_) {}

std::ptrdiff_t Descriptor::receive(std::uint8_t* buffer, std::size_t maxLength) const {
  if (kind_ == Kind::MuteUsbPrinter) {
    errno = EAGAIN;
    return -1;
  }
  const std::ptrdiff_t count = uninterrupted([&] {
    return isSocket() ? ::recv(number_, buffer, maxLength, MSG_DONTWAIT)
                      : ::read(number_, buffer, maxLength);
  });
  const bool isEmptyPacket =
      count == 0 && kind_ == Kind::UsbPrinter && (pollUntil(0, SteadyTime{}) & POLLHUP) == 0;
  if (isEmptyPacket) {
    errno = EAGAIN;  // a printer may send an empty packet at any time
    return -1;
  }
  return count;
}

std::ptrdiff_t Descriptor::receiveUntil(std::uint8_t* buffer, std::size_t maxLength,
                                        SteadyTime deadline) const {
  if (isPatient_ && deadline - SteadyClock::now() > patienceAtMost) {
    const std::ptrdiff_t count = ::recv(number_, buffer, maxLength, 0);
    if (count >= 0 || (errno != EAGAIN && errno != EINTR)) {
      return count;
    }
  }
  while (pollUntil(POLLIN, deadline) != 0) {
    const std::ptrdiff_t count = receive(buffer, maxLength);
    const bool wasEmptyPacket = count == -1 && errno == EAGAIN;
    if (!wasEmptyPacket || kind_ != Kind::UsbPrinter) {
      return count;
    }
  }
  errno = EAGAIN;
  return -1;
}

std::ptrdiff_t Descriptor::send(const std::uint8_t* bytes, std::size_t length) const {
  if (isUsb(kind_) && (pollUntil(0, SteadyTime{}) & POLLHUP) != 0) {
    errno = ENODEV;  // the printer was unplugged before anything was sent
    return -1;
  }
  const std::ptrdiff_t count = uninterrupted([&] {
    return isSocket() ? ::send(number_, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL)
                      : ::write(number_, bytes, length);
  });
  // If a transfer is interrupted, the driver reports an error as if nothing had been sent. The
  // error is EIO, or ENODEV if the driver already knows that the printer was unplugged. But the
  // printer may have received any part of the bytes. So all bytes count as taken, and the next call
  // fails.
  const bool brokeOff = isUsb(kind_) && count == -1 && (errno == EIO || errno == ENODEV);
  return brokeOff ? static_cast<std::ptrdiff_t>(length) : count;
}

short Descriptor::pollUntil(short events, SteadyTime deadline) const {
  pollfd asked{.fd = number_, .events = events, .revents = 0};
  while (true) {
    const timespec left = timeLeft(deadline);
    const int count = ::ppoll(&asked, 1, &left, nullptr);
    if (count > 0) {
      return asked.revents;
    }
    if (count == 0) {
      return 0;
    }
    if (errno != EINTR) {
      return POLLERR;
    }
  }
}

bool Descriptor::hasUnderWay() const {
  if (isUsb(kind_)) {
    return pollUntil(POLLOUT, SteadyTime{}) == 0;
  }
  return isSocket() && outputCount() != idleOutputCount_;
}

// Returns the system's count of the output. For a Bluetooth socket, the system counts the free
// space; for any other socket, the bytes under way, which have not reached the other side yet.
int Descriptor::outputCount() const {
  int count = 0;
  return ::ioctl(number_, SIOCOUTQ, &count) == 0 ? count : idleOutputCount_;
}

std::chrono::milliseconds Descriptor::silence() const {
  tcp_info info{};
  socklen_t length = sizeof info;
  if (::getsockopt(number_, IPPROTO_TCP, TCP_INFO, &info, &length) != 0) {
    return {};
  }
  // The system sends probes to a silent printer. A single unanswered probe means nothing, because
  // the system may have sent it just now. While a printer has no space, the pauses between the
  // probes grow to two minutes.
  const bool askedInVain = info.tcpi_retransmits + info.tcpi_probes > 1;
  return std::chrono::milliseconds(askedInVain ? info.tcpi_last_ack_recv : 0);
}

std::string Descriptor::portState() const {
  int status = 0;
  if (!isUsb(kind_) || ::ioctl(number_, LPGETSTATUS, &status) != 0) {
    return "";
  }
  std::string state = inWords(status);
  if (kind_ == Kind::UsbPrinter) {
    return state;
  }
  return (state.empty() ? "" : state + "; ") +
         "the device takes bytes but cannot answer, so no job can be confirmed";
}

void Descriptor::endOutput() const {
  if (kind_ == Kind::Socket) {
    ::shutdown(number_, SHUT_WR);
  }
}

void Descriptor::shutdown() const {
  if (isSocket()) {
    ::shutdown(number_, SHUT_RDWR);
  }
}

}  // namespace quordalvane::posix
