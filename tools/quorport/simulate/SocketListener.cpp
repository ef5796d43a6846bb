#include "tools/quorport/simulate/SocketListener.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>

#include "backends/posix/Resolve.h"
#include "text/Number.h"

namespace quordalvane::tool {
namespace {

using posix::Descriptor;

constexpr std::chrono::seconds resolveTime{5};

void check(bool succeeded) {
  if (!succeeded) {
    throw std::system_error(errno, std::generic_category());
  }
}

Descriptor makeSocket(int family) {
  const int number = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  check(number >= 0);
  return {number, Descriptor::Kind::Socket};
}

class SocketLine : public Line {
 public:
  using Line::Line;

  void endOutput() override { ::shutdown(descriptor().number(), SHUT_WR); }

  bool hasSettled() override {
    std::array<std::uint8_t, 4096> thrownAway;
    std::ptrdiff_t count = 1;
    while (count > 0) {
      count = descriptor().receive(thrownAway.data(), thrownAway.size());
    }
    return count == 0 || errno != EAGAIN;
  }

  void resetOnClose() override {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(descriptor().number(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  }

  bool wasReset() const override { return (descriptor().pollUntil(0, {}) & POLLERR) != 0; }
};

class SocketListener : public Listener {
 public:
  explicit SocketListener(Descriptor socket) : socket_(std::move(socket)) {}

  int descriptor() const override { return socket_.number(); }
  bool hostsQueue() const override { return true; }

  std::unique_ptr<Line> accept() override {
    const int number = ::accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (number < 0) {
      return nullptr;
    }
    // With this option, the system sends short answers without delay. A Unix socket refuses the
    // option, and does not need it.
    const int on = 1;
    ::setsockopt(number, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return std::make_unique<SocketLine>(Descriptor(number, Descriptor::Kind::Socket));
  }

  void resume(bool /*dropped*/) override {}

 private:
  Descriptor socket_;
};

class TcpListener : public SocketListener {
 public:
  using SocketListener::SocketListener;

  std::string place() const override {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    ::getsockname(descriptor(), reinterpret_cast<sockaddr*>(&address), &length);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    ::getnameinfo(reinterpret_cast<const sockaddr*>(&address), length, host.data(), host.size(),
                  port.data(), port.size(), NI_NUMERICHOST | NI_NUMERICSERV);
    const bool hasColons = address.ss_family == AF_INET6;
    return std::string("tcp:") + (hasColons ? "[" : "") + host.data() + (hasColons ? "]:" : ":") +
           port.data();
  }
};

sockaddr_un unixAddress(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

class UnixListener : public SocketListener {
 public:
  UnixListener(Descriptor socket, std::string path)
      : SocketListener(std::move(socket)), path_(std::move(path)) {
    struct stat made {};
    check(::stat(path_.c_str(), &made) == 0);
    device_ = made.st_dev;
    inode_ = made.st_ino;
  }

  ~UnixListener() override {
    struct stat found {};
    const bool isOurs =
        ::lstat(path_.c_str(), &found) == 0 && found.st_dev == device_ && found.st_ino == inode_;
    if (isOurs) {
      ::unlink(path_.c_str());
    }
  }

  std::string place() const override {
    std::string spec = "unix:";
    for (const char c : path_) {
      spec += c == ',' || c == '\\' ? std::string{'\\', c} : std::string{c};
    }
    return spec;
  }

 private:
  const std::string path_;
  dev_t device_;
  ino_t inode_;
};

bool somebodyListensAt(const sockaddr_un& address) {
  const Descriptor socket = makeSocket(AF_UNIX);
  return ::connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
             0 ||
         errno != ECONNREFUSED;
}

// Removes a socket at which nobody listens any more.
void removeStaleSocket(const std::string& path) {
  struct stat found {};
  if (::lstat(path.c_str(), &found) != 0) {
    return;
  }
  if (!S_ISSOCK(found.st_mode)) {
    throw std::runtime_error("the file exists already and is not a socket");
  }
  if (somebodyListensAt(unixAddress(path))) {
    throw std::runtime_error("another program already listens there");
  }
  check(::unlink(path.c_str()) == 0);
}

}  // namespace

std::optional<ListenAddress> parseListenAddress(std::string_view text) {
  if (text.empty()) {
    return ListenAddress{.host = "127.0.0.1", .port = 0};
  }
  const std::size_t colon = text.rfind(':');
  const std::string_view digits = colon == std::string_view::npos ? text : text.substr(colon + 1);
  std::string_view host = colon == std::string_view::npos ? "" : text.substr(0, colon);
  const auto port = numberIn<std::uint16_t>(digits);
  if (!port) {
    return std::nullopt;
  }
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  } else if (host.find_first_of(":[],") != std::string_view::npos) {
    return std::nullopt;
  }
  return ListenAddress{.host = host.empty() ? "127.0.0.1" : std::string(host), .port = *port};
}

std::unique_ptr<Listener> listenOnTcp(const ListenAddress& address) {
  const auto found =
      posix::resolve(address.host, address.port, posix::SteadyClock::now() + resolveTime).front();
  Descriptor socket = makeSocket(found.storage.ss_family);
  const int on = 1;
  check(::setsockopt(socket.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0);
  check(::bind(socket.number(), reinterpret_cast<const sockaddr*>(&found.storage), found.length) ==
        0);
  check(::listen(socket.number(), SOMAXCONN) == 0);
  return std::make_unique<TcpListener>(std::move(socket));
}

std::unique_ptr<Listener> listenOnUnix(const std::string& path, SocketAccess access) {
  removeStaleSocket(path);
  Descriptor socket = makeSocket(AF_UNIX);
  const sockaddr_un address = unixAddress(path);
  check(::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
  auto listener = std::make_unique<UnixListener>(std::move(socket), path);
  // The access mode is set before anybody can connect.
  check(access == SocketAccess::AsUsual || ::chmod(path.c_str(), S_IRUSR | S_IWUSR) == 0);
  check(::listen(listener->descriptor(), SOMAXCONN) == 0);
  return listener;
}

}  // namespace quordalvane::tool
