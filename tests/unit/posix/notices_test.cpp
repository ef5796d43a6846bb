#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string_view>

#include "backends/posix/AccessoryNotices.h"
#include "backends/posix/Descriptor.h"
#include "tests/unit/posix/NoMoreFiles.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

constexpr auto printerIsThere =
    "add@/devices/usb1/1-1:1.0/usbmisc/lp0\0ACTION=add\0SUBSYSTEM=usbmisc\0DEVNAME=usb/lp0\0"sv;
constexpr auto lineIsThere = "add@/devices/ttyUSB0\0ACTION=add\0SUBSYSTEM=tty\0DEVNAME=ttyUSB0\0"sv;
constexpr auto printerIsGone =
    "libudev\0\xfe\xed\xca\xfe\0ACTION=remove\0SUBSYSTEM=usbmisc\0DEVNAME=/dev/usb/lp0\0"sv;
constexpr auto diskIsThere = "add@/devices/sda\0ACTION=add\0SUBSYSTEM=block\0"sv;

class DeviceNotices : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends_), 0);
    notices.emplace(ends_[0]);
  }

  void TearDown() override { ::close(ends_[1]); }

  void say(std::string_view notice) const {
    ASSERT_EQ(::send(ends_[1], notice.data(), notice.size(), 0),
              static_cast<ssize_t>(notice.size()));
  }

  std::optional<AccessoryNotices> notices;

 private:
  int ends_[2] = {-1, -1};
};

TEST_F(DeviceNotices, AWaitEndsAtOnceOnANoticeOfAPrinterOrASerialLine) {
  for (const auto notice : {printerIsThere, lineIsThere, printerIsGone}) {
    say(notice);
    EXPECT_TRUE(notices->await(10s));
    EXPECT_FALSE(notices->await(0s)) << "each is told once";
  }
}

TEST_F(DeviceNotices, ANoticeThatArrivedBeforeAWaitEndsTheWait) {
  say(diskIsThere);
  say(printerIsThere);
  say(diskIsThere);
  EXPECT_TRUE(notices->await(0s));
}

TEST_F(DeviceNotices, ANoticeOfAnotherDeviceDoesNotShortenAWait) {
  say(diskIsThere);
  say("SUBSYSTEM=usbmisc"sv);
  say(""sv);
  const Stopwatch watch;
  EXPECT_FALSE(notices->await(20ms));
  EXPECT_GE(watch.seconds(), 0.02);
}

// Opens a socket in a group of sockets to which any user may send.
int groupSocket(unsigned group) {
  const int number =
      ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_USERSOCK);
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = group;
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  return ::bind(number, generic, sizeof address) == 0 ? number : (::close(number), -1);
}

TEST(LostNotices, EndAWaitBecauseTheyMayHaveReportedAPrinter) {
  constexpr unsigned group = 1;
  const int receiver = groupSocket(group);
  if (receiver < 0) {
    GTEST_SKIP() << "this user cannot receive from a group";
  }
  AccessoryNotices notices(receiver);
  const int sender = groupSocket(0);
  sockaddr_nl everyone{};
  everyone.nl_family = AF_NETLINK;
  everyone.nl_groups = group;
  for (int i = 0; i < 100'000 && errno != ENOBUFS; ++i) {
    ::sendto(sender, diskIsThere.data(), diskIsThere.size(), 0,
             reinterpret_cast<const sockaddr*>(&everyone), sizeof everyone);
  }
  ::close(sender);
  EXPECT_TRUE(notices.await(0s));
  EXPECT_FALSE(notices.await(0s));
}

TEST(DeviceNoticesWithoutASocket, LetAWaitLastItsWholeTime) {
  AccessoryNotices notices(-1);
  const Stopwatch watch;
  EXPECT_FALSE(notices.await(20ms));
  EXPECT_GE(watch.seconds(), 0.02);
}

TEST(DeviceNoticesWithoutASocket, CanBeConstructedIfTheProcessMayOpenNoMoreFiles) {
  std::optional<NoMoreFiles> limit(std::in_place);
  AccessoryNotices notices;
  limit.reset();
  EXPECT_FALSE(notices.await(1ms));
}

TEST(SystemDeviceNotices, CanBeAwaitedByAnyUser) {
  AccessoryNotices notices;
  notices.await(0s);
}

}  // namespace
}  // namespace quordalvane::posix
