#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "backends/posix/Connect.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/PosixPlatform.h"
#include "backends/posix/Serial.h"
#include "tests/contract/DescriptorPeer.h"
#include "tests/contract/LinkContract.h"
#include "tests/support/PseudoTerminal.h"

// The links of the POSIX back end: each has this process at both ends.
namespace quordalvane::contract {
namespace {

using posix::Descriptor;

class PosixLinkMaker : public LinkMaker {
 public:
  LinkTraits traits() const override { return {}; }
  Platform& platform() override { return platform_; }

  std::shared_ptr<EAAccessory> accessory() override {
    return std::make_shared<posix::LinkAccessory>(AccessoryIdentity{},
                                                  [this] { return connect(); });
  }

 protected:
  virtual Descriptor connect() = 0;

 private:
  posix::PosixPlatform platform_;
};

class SocketPairMaker : public PosixLinkMaker {
 public:
  std::unique_ptr<Peer> peer() override {
    return std::make_unique<DescriptorPeer>(std::exchange(other_, -1));
  }

 protected:
  Descriptor connect() override {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    other_ = ends[1];
    return {ends[0], Descriptor::Kind::socket};
  }

 private:
  int other_ = -1;
};

class ListeningMaker : public PosixLinkMaker {
 public:
  ~ListeningMaker() override { ::close(listener_); }

  std::unique_ptr<Peer> peer() override {
    const int accepted = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    EXPECT_GE(accepted, 0);
    return std::make_unique<DescriptorPeer>(accepted);
  }

 protected:
  template <typename Address>
  void listenAt(Address& address) {
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    listener_ = ::socket(generic->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(::bind(listener_, generic, length), 0);
    EXPECT_EQ(::listen(listener_, 8), 0);
    EXPECT_EQ(::getsockname(listener_, generic, &length), 0);
  }

 private:
  int listener_ = -1;
};

class TcpMaker : public ListeningMaker {
 public:
  TcpMaker() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    listenAt(address);
    port_ = ntohs(address.sin_port);
  }

 protected:
  Descriptor connect() override { return posix::connectTcp("127.0.0.1", port_); }

 private:
  std::uint16_t port_;
};

class UnixMaker : public ListeningMaker {
 public:
  UnixMaker() {
    std::string folder = testing::TempDir() + "linkXXXXXX";
    EXPECT_NE(::mkdtemp(folder.data()), nullptr);
    folder_ = folder;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path().c_str(), sizeof address.sun_path - 1);
    listenAt(address);
  }
  ~UnixMaker() override { std::filesystem::remove_all(folder_); }

 protected:
  Descriptor connect() override { return posix::connectUnix(path()); }

 private:
  std::string path() const { return folder_ / "socket"; }

  std::filesystem::path folder_;
};

class PtyMaker : public PosixLinkMaker {
 public:
  // Its end throws away what was not read, and a session opens the same line again.
  LinkTraits traits() const override {
    return {.keepsUnreadBytes = false,
            .closesOneWay = false,
            .resets = false,
            .linksAnew = false,
            .standsSideBySide = false};
  }

  std::unique_ptr<Peer> peer() override {
    return std::make_unique<DescriptorPeer>(terminal_.master);
  }

 protected:
  Descriptor connect() override { return posix::openSerial(terminal_.line); }

 private:
  const test::PseudoTerminal terminal_ = test::openPseudoTerminal();
};

template <typename Maker>
LinkKind kind(const char* name) {
  return {.name = name, .make = [] { return std::make_unique<Maker>(); }};
}

INSTANTIATE_TEST_SUITE_P(Posix, LinkContract,
                         testing::Values(kind<SocketPairMaker>("SocketPair"), kind<TcpMaker>("Tcp"),
                                         kind<UnixMaker>("UnixSocket"), kind<PtyMaker>("Pty")),
                         kindName);

}  // namespace
}  // namespace quordalvane::contract
