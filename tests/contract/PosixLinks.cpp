#include <fcntl.h>
#include <sys/socket.h>

#include <utility>

#include "backends/posix/Connect.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/PosixPlatform.h"
#include "backends/posix/Serial.h"
#include "tests/contract/DescriptorPeer.h"
#include "tests/contract/LinkContract.h"
#include "tests/support/Listener.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TemporaryFolder.h"

// Tests the links of the POSIX back end. Both ends of each link are in this process.
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
    return {ends[0], Descriptor::Kind::Socket};
  }

 private:
  int other_ = -1;
};

class ListeningMaker : public PosixLinkMaker {
 public:
  explicit ListeningMaker(test::Listener listener) : listener_(std::move(listener)) {}

  std::unique_ptr<Peer> peer() override {
    return std::make_unique<DescriptorPeer>(listener_.accept());
  }

 protected:
  const test::Listener listener_;
};

class TcpMaker : public ListeningMaker {
 public:
  TcpMaker() : ListeningMaker(test::Listener::onLoopback(8)) {}

 protected:
  Descriptor connect() override { return posix::connectTcp("127.0.0.1", listener_.port()); }
};

class UnixMaker : private test::TemporaryFolder, public ListeningMaker {
 public:
  UnixMaker() : ListeningMaker(test::Listener::at(file("socket"), 8)) {}

 protected:
  Descriptor connect() override { return posix::connectUnix(file("socket")); }
};

/// A pair of sockets replaces the driver of USB printers. The link reads and closes the pair in the
/// way that only USB printers need.
class PrinterDriverMaker : public PosixLinkMaker {
 public:
  LinkTraits traits() const override { return {.closesOneWay = false, .resets = false}; }

  std::unique_ptr<Peer> peer() override {
    return std::make_unique<DescriptorPeer>(std::exchange(other_, -1));
  }

 protected:
  Descriptor connect() override {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    EXPECT_EQ(::fcntl(ends[0], F_SETFL, O_NONBLOCK), 0);
    platform().ignoreSigPipe();  // the real driver does not raise this signal
    other_ = ends[1];
    return {ends[0], Descriptor::Kind::UsbPrinter};
  }

 private:
  int other_ = -1;
};

class PtyMaker : public PosixLinkMaker {
 public:
  // Closing a terminal drops its unread bytes, and the next session opens the same terminal again.
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
                                         kind<UnixMaker>("UnixSocket"), kind<PtyMaker>("Pty"),
                                         kind<PrinterDriverMaker>("PrinterDriver")),
                         kindName);

}  // namespace
}  // namespace quordalvane::contract
