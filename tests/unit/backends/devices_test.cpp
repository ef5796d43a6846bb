#include <gtest/gtest.h>
#include <termios.h>

#include <stdexcept>

#include "backends/Devices.h"
#include "backends/Schemes.h"
#include "backends/posix/Descriptor.h"
#include "backends/posix/PosixClock.h"
#include "tests/support/Listener.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TemporaryFolder.h"

namespace quordalvane {
namespace {

const std::string protocol = "com.quordalvane.receipt";

std::shared_ptr<EAAccessory> make(const std::string& text) {
  static posix::PosixClock clock;
  return makeAccessory(parseDeviceSpec(text), clock);
}

TEST(Devices, TheAccessoryOfEverySchemeIsConnectedAndHasTheGivenTexts) {
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

TEST(Devices, TheDescriptionOfAnAccessoryContainsTheKeysThatAreSet) {
  EXPECT_EQ(make("unix:/a,id=7,name=N,model=M,serial=S,manufacturer=K,address=01:23:45:67:89:ab")
                ->description(),
            "<accessory 7, address 01:23:45:67:89:ab: N, model M, serial S, maker K>");
  EXPECT_EQ(make("unix:/a,id=8,name=N")->description(), "<accessory 8: N, maker quor dalvane>");
}

TEST(Devices, AccessoriesWithoutAnIdentifierGetConsecutiveNumbers) {
  const auto first = make("unix:/a")->connectionID();
  EXPECT_GE(first, 1U);
  EXPECT_EQ(make("tcp:127.0.0.1:9")->connectionID(), first + 1);
  EXPECT_EQ(make("unix:/a,id=0")->connectionID(), 0U);
  EXPECT_EQ(make("serial:/a")->connectionID(), first + 2);
}

TEST(Devices, AnUnreachableAccessoryOpensNoSessionAndReportsTheReason) {
  for (const std::string place : {"/none/there", "/tmp"}) {
    for (const std::string scheme : {"unix:", "serial:"}) {
      const auto accessory = make(scheme + place);
      EXPECT_EQ(accessory->openSession(protocol), nullptr);
      EXPECT_NE(lastOpenError(*accessory).find(place), std::string::npos);
    }
  }
}

TEST(Devices, AFailedOpenHasAnErrorCodeExceptOnTheVirtualPrinter) {
  const auto absent = make("unix:/none/there");
  EXPECT_EQ(absent->openSession(protocol), nullptr);
  EXPECT_EQ(lastOpenErrorCode(*absent), std::errc::no_such_file_or_directory);
  EXPECT_EQ(portState(*absent), "");
  const auto simulated = make("virtual:");
  EXPECT_EQ(simulated->openSession("com.example.unknown"), nullptr);
  EXPECT_EQ(lastOpenErrorCode(*simulated), std::error_code());
  EXPECT_EQ(portState(*simulated), "");
}

TEST(Devices, TheVirtualPrinterIsNotLostBeforeItsFirstSession) {
  const auto simulated = make("virtual:");
  simulated->noticeLoss();
  EXPECT_TRUE(simulated->isConnected());
}

TEST(Devices, TheVirtualPrinterIsNotLostAfterTheEndOfItsSession) {
  const auto simulated = make("virtual:");
  auto session = simulated->openSession(protocol);
  ASSERT_NE(session, nullptr);
  const auto input = session->inputStream();
  session.reset();
  simulated->noticeLoss();
  EXPECT_TRUE(simulated->isConnected());
}

TEST(Devices, AMissingUsbPrinterIsNamedBySchemeAndAddressByDefault) {
  EXPECT_EQ(make("usb:no such printer")->name(), "usb:no such printer");
  EXPECT_EQ(make("usb:no such printer,name=Till")->name(), "Till");
}

TEST(Devices, TheErrorOfAnUnknownSchemeNamesTheScheme) {
  DeviceSpec spec = parseDeviceSpec("unix:/a");
  spec.scheme = "pigeon";
  posix::PosixClock clock;
  try {
    makeAccessory(spec, clock);
    FAIL() << "it was made";
  } catch (const std::invalid_argument& error) {
    EXPECT_NE(std::string(error.what()).find("pigeon"), std::string::npos);
  }
}

TEST(Devices, OpensASocketAndASerialLineByTheirPaths) {
  const test::TemporaryFolder folder;
  const auto listener = test::Listener::at(folder.file("s,1"), 1);
  EXPECT_NE(make("unix:" + folder.file("s\\,1"))->openSession(protocol), nullptr);

  const auto terminal = test::openPseudoTerminal();
  const posix::Descriptor master(terminal.master, posix::Descriptor::Kind::Terminal);
  EXPECT_NE(make("serial:" + terminal.line)->openSession(protocol), nullptr);
}

TEST(Devices, ASerialLineGetsTheSettingsInTheDeviceText) {
  const auto terminal = test::openPseudoTerminal();
  const posix::Descriptor master(terminal.master, posix::Descriptor::Kind::Terminal);
  const auto session =
      make("serial:" + terminal.line + ",baud=19200,bits=8,parity=odd,stop=2,flow=rtscts")
          ->openSession(protocol);
  ASSERT_NE(session, nullptr);
  termios settings{};
  ASSERT_EQ(::tcgetattr(terminal.master, &settings), 0);
  EXPECT_EQ(::cfgetospeed(&settings), speed_t{B19200});
  EXPECT_EQ(settings.c_cflag & (CSTOPB | CRTSCTS | PARODD), CSTOPB | CRTSCTS | PARODD);
}

/// A scheme that itself knows its printers, as the scheme `bluetooth:` does.
const Scheme flock = {
    .name = "flock",
    .place = "",
    .about = "printers of this test",
    .checkPlace = [](const std::string&) {},
    .make = [](const DeviceSpec&, AccessoryIdentity, Clock&) -> std::shared_ptr<EAAccessory> {
      return nullptr;
    },
    .ifSilent = "wait",
    .ifNotUnderstood = "ask again",
    .places =
        [] {
          return std::vector<std::string>{"grey", "white"};
        },
};

TEST(Devices, ASchemeWithoutAnAddressMeansAllDevicesOfTheScheme) {
  addScheme(flock);
  using Texts = std::vector<std::string>;
  EXPECT_EQ(devicesMeantBy("flock:"), (Texts{"flock:grey", "flock:white"}));
  EXPECT_EQ(devicesMeantBy("flock"), (Texts{"flock:grey", "flock:white"}));
  EXPECT_EQ(devicesMeantBy("flock:,id=3"), (Texts{"flock:grey,id=3", "flock:white,id=3"}));
  EXPECT_EQ(devicesMeantBy("flock:grey,id=3"), Texts{"flock:grey,id=3"});
  EXPECT_EQ(devicesMeantBy("unix:"), Texts{"unix:"}) << "it knows none";
  EXPECT_EQ(devicesMeantBy("pigeon:"), Texts{"pigeon:"});
}

TEST(Devices, TheConnectedDevicesAreOnThePlatformOfTheProcess) {
  const auto platform = connectDevices({"unix:/a,id=4", "tcp:127.0.0.1:9,id=3"});
  EXPECT_EQ(processPlatform(), platform);
  const auto accessories = platform->sharedAccessoryManager().connectedAccessories();
  ASSERT_EQ(accessories.size(), 2U);
  EXPECT_EQ(accessories[0]->connectionID(), 4U);
  EXPECT_EQ(accessories[1]->connectionID(), 3U);
  setProcessPlatform(nullptr);
}

TEST(Devices, AnInvalidDeviceLeavesThePlatformOfTheProcessUnchanged) {
  const auto before = connectDevices({});
  EXPECT_THROW(connectDevices({"unix:/a", "udp:b"}), std::invalid_argument);
  EXPECT_EQ(processPlatform(), before);
  setProcessPlatform(nullptr);
}

}  // namespace
}  // namespace quordalvane
