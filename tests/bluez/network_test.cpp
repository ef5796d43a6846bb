#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "backends/DeviceSpec.h"
#include "discovery/BluetoothDevices.h"
#include "discovery/Discovery.h"
#include "discovery/NetworkDevices.h"
#include "tests/bluez/standins/BluetoothService.h"
#include "tests/bluez/standins/NetworkService.h"
#include "tests/bluez/standins/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"
#include "text/PrintableText.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;
using test::StandInAnnouncement;
using test::StandInAvahi;
using test::StandInBluetooth;
using test::StandInDevice;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;

class PrinterSearch : public testing::Test {
 protected:
  const test::PrivateBus bus_;
};

TEST_F(PrinterSearch, FindsThePrintersThatAnnounceARawPort) {
  const StandInAvahi avahi(
      {{.name = "Bar",
        .texts = {"txtvers=1", "ty=Quor Dalvane XQ700", "usb_MFG=Quor Dalvane", "usb_MDL=XQ700"}},
       {.name = "Counter", .address = "2001:db8::7", .port = 9101}});
  const auto found = networkDevices(500ms);
  EXPECT_THAT(found, ElementsAre(AllOf(Field(&FoundDevice::device, "tcp:192.0.2.10:9100"),
                                       Field(&FoundDevice::name, "Quor Dalvane XQ700"),
                                       Field(&FoundDevice::maker, "Quor Dalvane"),
                                       Field(&FoundDevice::model, "XQ700"),
                                       Field(&FoundDevice::via, Via::Network),
                                       Field(&FoundDevice::reachable, true)),
                                 AllOf(Field(&FoundDevice::device, "tcp:[2001:db8::7]:9101"),
                                       Field(&FoundDevice::name, "Counter"))));
  EXPECT_THAT(avahi.askedFor(), ElementsAre("_pdl-datastream._tcp"));
}

TEST_F(PrinterSearch, DoesNotReportARememberedPrinterAsReachable) {
  constexpr std::uint32_t remembered = 1;
  const StandInAvahi avahi({{.name = "Bar"}, {.name = "Counter", .flags = 4 | remembered}});
  EXPECT_THAT(networkDevices(500ms), ElementsAre(Field(&FoundDevice::reachable, true),
                                                 Field(&FoundDevice::reachable, std::nullopt)));
}

TEST_F(PrinterSearch, IgnoresAnnouncementsForgedByAnotherProgram) {
  const StandInAvahi avahi(std::vector<StandInAnnouncement>(1));
  const auto connection = sdbus::createSystemBusConnection();
  const auto forger =
      sdbus::createObject(*connection, sdbus::ObjectPath("/Client0/ServiceBrowser0"));
  auto found = std::async(std::launch::async, networkDevices, 500ms);
  while (found.wait_for(10ms) != std::future_status::ready) {
    forger->emitSignal("ItemNew")
        .onInterface("org.freedesktop.Avahi.ServiceBrowser")
        .withArguments(std::string("no announcement"));
  }
  EXPECT_EQ(found.get().size(), 1U);
}

TEST_F(PrinterSearch, OmitsAPrinterWithoutAUsableAddress) {
  const StandInAvahi avahi({{.name = "silent", .address = ""},
                            {.name = "no port", .port = 0},
                            {.name = "no address", .address = "a,b\n"},
                            {.name = "queue", .type = "_ipp._tcp"}});
  EXPECT_TRUE(networkDevices(300ms).empty());
}

TEST_F(PrinterSearch, ListsAPrinterOnceIfItIsAnnouncedThreeTimes) {
  const StandInAvahi avahi({{}, {}, {}});
  EXPECT_EQ(networkDevices(300ms).size(), 1U);
}

TEST_F(PrinterSearch, LimitsTheNumberOfPrintersAndEscapesTheirNames) {
  std::vector<StandInAnnouncement> many(1'000);
  for (std::size_t i = 0; i < many.size(); ++i) {
    many[i].name = std::to_string(i) + "\x1b]0;" + std::string(500, 'x');
  }
  const StandInAvahi avahi(many);
  const auto found = networkDevices(2s);
  EXPECT_LE(found.size(), 100U);
  ASSERT_FALSE(found.empty());
  for (const FoundDevice& device : found) {
    EXPECT_TRUE(isPrintable(device.name));
    EXPECT_LE(device.name.size(), 103U);
  }
}

TEST_F(PrinterSearch, FindsPairedPrintersAndNoOtherBluetoothDevice) {
  StandInDevice connected;
  connected.address = "01:23:45:67:89:AC";
  connected.alias = "\x1b[2J";
  connected.isConnected = true;
  StandInDevice telephone;
  telephone.address = "01:23:45:67:89:AD";
  telephone.deviceClass = 0x5a020c;
  StandInDevice seen;
  seen.address = "01:23:45:67:89:AE";
  seen.isPaired = false;
  const StandInBluetooth service({.devices = {StandInDevice{}, connected, telephone, seen}});
  EXPECT_THAT(
      bluetoothDevices(10s),
      ElementsAre(
          AllOf(Field(&FoundDevice::device, "bluetooth:01:23:45:67:89:AB"),
                Field(&FoundDevice::name, "Kitchen"), Field(&FoundDevice::via, Via::Bluetooth),
                Field(&FoundDevice::reachable, std::nullopt)),
          AllOf(Field(&FoundDevice::name, "\\u001b[2J"), Field(&FoundDevice::reachable, true))));
}

TEST_F(PrinterSearch, ReportsAPrinterAsUnreachableIfTheAdapterIsOff) {
  const StandInBluetooth service({.isAdapterOn = false});
  EXPECT_EQ(bluetoothDevices(10s).at(0).reachable, false);
}

TEST_F(PrinterSearch, ReportsWithin2500MillisecondsWhichLinksWereNotSearched) {
  const auto began = std::chrono::steady_clock::now();
  const Discovery discovery = discoverDevices();
  EXPECT_LT(std::chrono::steady_clock::now() - began, 2500ms);
  EXPECT_THAT(discovery.unsearched,
              ElementsAre(testing::HasSubstr("Bluetooth was not searched: "),
                          testing::HasSubstr("the network was not searched: ")));
}

TEST_F(PrinterSearch, ListsBluetoothPrintersBeforeNetworkPrinters) {
  const StandInAvahi avahi({{.name = "Bar"}});
  const StandInBluetooth service({.devices = {StandInDevice{}}});
  const test::TemporaryFolder bare;
  const Discovery discovery =
      discoverDevices({.usb = {.sys = bare.file(""), .dev = bare.file("")},
                       .serial = {.sys = bare.file(""), .dev = bare.file("")}});
  EXPECT_THAT(discovery.devices, ElementsAre(Field(&FoundDevice::via, Via::Bluetooth),
                                             Field(&FoundDevice::via, Via::Network)));
}

TEST_F(PrinterSearch, EndsWithin2500MillisecondsIfNothingIsFound) {
  const StandInAvahi avahi({});
  const StandInBluetooth service({.devices = {}});
  const auto began = std::chrono::steady_clock::now();
  EXPECT_TRUE(discoverDevices().unsearched.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - began, 2500ms);
}

}  // namespace
}  // namespace quordalvane
