#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "backends/Devices.h"
#include "tests/support/PseudoTerminal.h"

namespace quordalvane {
namespace {

const std::string protocol = "com.quordalvane.receipt";

std::shared_ptr<EAAccessory> make(const std::string& text) {
  static posix::PosixClock clock;
  return makeAccessory(parseDeviceSpec(text), clock);
}

TEST(Devices, EverySchemeMakesAnAccessoryThatIsConnectedAndHasTheGivenTexts) {
  for (const char* place : {"virtual:", "tcp:127.0.0.1:9", "unix:/none", "serial:/dev/none"}) {
    const auto accessory = make(place + std::string(",name=Till,serial=S,model=M,id=77"));
    ASSERT_NE(accessory, nullptr) << place;
    EXPECT_TRUE(accessory->isConnected());
    EXPECT_EQ(accessory->name(), "Till");
    EXPECT_EQ(accessory->serialNumber(), "S");
    EXPECT_EQ(accessory->modelNumber(), "M");
    EXPECT_EQ(accessory->connectionID(), 77U);
    EXPECT_EQ(lastOpenError(*accessory), "");
  }
}

TEST(Devices, AccessoriesWithoutAnIdentifierAreNumbered) {
  const auto first = make("unix:/a")->connectionID();
  EXPECT_GE(first, 1U);
  EXPECT_EQ(make("tcp:127.0.0.1:9")->connectionID(), first + 1);
  EXPECT_EQ(make("unix:/a,id=0")->connectionID(), 0U);
  EXPECT_EQ(make("serial:/a")->connectionID(), first + 2);
}

TEST(Devices, AnAccessoryThatCannotBeReachedOpensNoSessionAndTellsWhy) {
  for (const std::string place : {"/none/there", "/tmp"}) {
    for (const std::string scheme : {"unix:", "serial:"}) {
      const auto accessory = make(scheme + place);
      EXPECT_EQ(accessory->openSession(protocol), nullptr);
      EXPECT_NE(lastOpenError(*accessory).find(place), std::string::npos);
    }
  }
}

TEST(Devices, OpensASocketAndASerialLineAtTheirPlaces) {
  std::string folder = testing::TempDir() + "devicesXXXXXX";
  ASSERT_NE(::mkdtemp(folder.data()), nullptr);
  const std::string path = folder + "/s,1";
  const posix::Descriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0),
                                   posix::Descriptor::Kind::socket);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(listener.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
  ASSERT_EQ(::listen(listener.number(), 1), 0);
  EXPECT_NE(make("unix:" + folder + "/s\\,1")->openSession(protocol), nullptr);
  std::filesystem::remove_all(folder);

  const auto terminal = test::openPseudoTerminal();
  const posix::Descriptor master(terminal.master, posix::Descriptor::Kind::terminal);
  EXPECT_NE(make("serial:" + terminal.line)->openSession(protocol), nullptr);
}

TEST(Devices, ConnectingThemSetsThePlatformOfTheProcess) {
  const auto platform = connectDevices({"unix:/a,id=4", "tcp:127.0.0.1:9,id=3"});
  EXPECT_EQ(processPlatform(), platform);
  const auto accessories = platform->sharedAccessoryManager().connectedAccessories();
  ASSERT_EQ(accessories.size(), 2U);
  EXPECT_EQ(accessories[0]->connectionID(), 4U);
  EXPECT_EQ(accessories[1]->connectionID(), 3U);
  setProcessPlatform(nullptr);
}

TEST(Devices, AWrongTextLeavesThePlatformOfTheProcessAsItWas) {
  const auto before = connectDevices({});
  EXPECT_THROW(connectDevices({"unix:/a", "udp:b"}), std::invalid_argument);
  EXPECT_EQ(processPlatform(), before);
  setProcessPlatform(nullptr);
}

}  // namespace
}  // namespace quordalvane
