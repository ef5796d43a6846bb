#include "bench/Endpoint.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace quordalvane::bench {
namespace {

int checked(int result) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), "bench endpoint");
  }
  return result;
}

template <typename Address>
void listenAt(int listener, const Address& address) {
  constexpr int backlog = 1024;
  checked(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  checked(::listen(listener, backlog));
}

template <typename Address>
int connectTo(int family, const Address& address) {
  const int number = checked(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  checked(::connect(number, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  return number;
}

void sendAtOnce(int number) {
  const int on = 1;
  checked(::setsockopt(number, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on));
}

class TcpEndpoint final : public Endpoint {
 public:
  TcpEndpoint() {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    listenAt(listener_, address_);
    socklen_t length = sizeof address_;
    checked(::getsockname(listener_, reinterpret_cast<sockaddr*>(&address_), &length));
  }
  ~TcpEndpoint() override { ::close(listener_); }

  std::string device() const override { return "tcp:127.0.0.1:" + std::to_string(port()); }

  int connect() override {
    const int number = connectTo(AF_INET, address_);
    sendAtOnce(number);
    return number;
  }

  int accept() override {
    const int number = checked(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC));
    sendAtOnce(number);
    return number;
  }

  std::uint16_t port() const { return ntohs(address_.sin_port); }

 private:
  const int listener_ = checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address_{};
};

class LocalEndpoint final : public Endpoint {
 public:
  LocalEndpoint() {
    static std::atomic<int> made = 0;
    path_ = "/tmp/quor_bench." + std::to_string(::getpid()) + "." + std::to_string(++made);
    address_.sun_family = AF_UNIX;
    path_.copy(address_.sun_path, sizeof address_.sun_path - 1);
    listenAt(listener_, address_);
  }
  ~LocalEndpoint() override {
    ::close(listener_);
    ::unlink(path_.c_str());
  }

  std::string device() const override { return "unix:" + path_; }

  int connect() override { return connectTo(AF_UNIX, address_); }

  int accept() override { return checked(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC)); }

 private:
  const int listener_ = checked(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address_{};
  std::string path_;
};

/// A terminal has one connection at a time. The printer's end of the connection exists from the
/// beginning.
class TerminalEndpoint final : public Endpoint {
 public:
  TerminalEndpoint() {
    checked(::grantpt(master_));
    checked(::unlockpt(master_));
    std::array<char, 128> name{};
    checked(::ptsname_r(master_, name.data(), name.size()));
    path_ = name.data();
  }
  ~TerminalEndpoint() override { ::close(master_); }

  std::string device() const override { return "serial:" + path_; }

  int connect() override {
    const int number = checked(::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios settings{};
    checked(::tcgetattr(number, &settings));
    ::cfmakeraw(&settings);
    checked(::tcsetattr(number, TCSANOW, &settings));
    return number;
  }

  int accept() override { return checked(::fcntl(master_, F_DUPFD_CLOEXEC, 0)); }

 private:
  const int master_ = checked(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  std::string path_;
};

}  // namespace

std::unique_ptr<Endpoint> makeEndpoint(Medium medium) {
  switch (medium) {
    case Medium::Tcp:
      return std::make_unique<TcpEndpoint>();
    case Medium::Local:
      return std::make_unique<LocalEndpoint>();
    case Medium::Terminal:
      break;
  }
  return std::make_unique<TerminalEndpoint>();
}

std::uint16_t tcpPort(const Endpoint& endpoint) {
  return dynamic_cast<const TcpEndpoint&>(endpoint).port();
}

}  // namespace quordalvane::bench
