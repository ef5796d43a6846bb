#include "discovery/Discovery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/support/TemporaryFolder.h"

namespace quordalvane {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

void write(const fs::path& file, const std::string& text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << text << "\n";
}

/// The system folders that list devices, replaced by a folder of this test.
class DiscoveryTest : public testing::Test {
 protected:
  DiscoveryTest() {
    fs::create_directories(sys_);
    fs::create_directories(dev_);
  }

  void plugInPrinter(int number, const std::string& id, const std::string& serial) {
    const std::string node = "lp" + std::to_string(number);
    const fs::path device = sys_ / "devices" / ("1-" + std::to_string(number));
    write(device / "idVendor", "04b8");
    write(device / "idProduct", "0202");
    write(device / "serial", serial);
    write(device / "1-1:1.0/ieee1284_id", id);
    link(sys_ / "class/usbmisc" / node / "device", device / "1-1:1.0");
    write(dev_ / "usb" / node, "");
  }

  /// A serial line of the machine itself; the type 0 means that there is no hardware.
  void addLine(const std::string& name, const std::string& type) {
    write(sys_ / "class/tty" / name / "type", type);
    fs::create_directories(sys_ / "devices/platform");
    link(sys_ / "class/tty" / name / "device", sys_ / "devices/platform");
    write(dev_ / name, "");
  }

  /// Puts the folder of the line into the folder of its USB interface. `below` is the path from the
  /// folder of the device to the folder of the interface.
  void plugInLine(const std::string& name, const std::string& product,
                  const fs::path& below = "2-1:1.0") {
    const fs::path device = sys_ / "devices/2-1";
    write(device / "idVendor", "0403");
    write(device / "manufacturer", "Quor Dalvane");
    write(device / "product", product);
    write(device / "serial", "A1");
    fs::create_directories(device / below / name);
    link(sys_ / "class/tty" / name / "device", device / below / name);
    write(dev_ / name, "");
  }

  static void link(const fs::path& from, const fs::path& to) {
    fs::create_directories(from.parent_path());
    fs::create_symlink(to, from);
  }

  std::vector<FoundDevice> found() const {
    return discoverDevices(
               {.usb = {.sys = sys_, .dev = dev_}, .serial = {.sys = sys_, .dev = dev_}})
        .devices;
  }

  std::vector<std::string> texts() const {
    std::vector<std::string> texts;
    for (const FoundDevice& device : found()) {
      texts.push_back(device.device);
    }
    return texts;
  }

  const test::TemporaryFolder folder_;
  const fs::path sys_ = folder_.file("sys");
  const fs::path dev_ = folder_.file("dev");
};

TEST_F(DiscoveryTest, FindsNothingOnAMachineWithoutPrinters) {
  EXPECT_TRUE(found().empty());
}

TEST_F(DiscoveryTest, ReportsTheTextsOfAUsbPrinterAndThatItIsReachable) {
  plugInPrinter(0, "MFG:Quor Dalvane;MDL:XQ700;", "S 1/7");
  const FoundDevice printer = found().at(0);
  EXPECT_EQ(printer.device, "usb:S 1/7");
  EXPECT_EQ(printer.name, "Quor Dalvane XQ700");
  EXPECT_EQ(printer.maker, "Quor Dalvane");
  EXPECT_EQ(printer.model, "XQ700");
  EXPECT_EQ(printer.serialNumber, "S 1/7");
  EXPECT_EQ(printer.via, Via::Usb);
  EXPECT_EQ(printer.reachable, true);
}

TEST_F(DiscoveryTest, ReportsAUsbPrinterWithoutADeviceFileAsUnreachable) {
  plugInPrinter(0, "MFG:M;MDL:T;", "1");
  fs::remove(dev_ / "usb/lp0");
  EXPECT_EQ(found().at(0).reachable, false);
}

TEST_F(DiscoveryTest, NamesAUsbPrinterWithoutTextsByItsVendorAndProductNumbers) {
  plugInPrinter(0, "", "");
  const FoundDevice printer = found().at(0);
  EXPECT_EQ(printer.name, "USB printer 04b8:0202");
  EXPECT_EQ(printer.device, "usb:" + (dev_ / "usb/lp0").string());
}

TEST_F(DiscoveryTest, NamesAUsbPrinterByItsMakerOrModelIfTheOtherIsMissing) {
  plugInPrinter(0, "MFG:M;", "1");
  plugInPrinter(1, "MDL:T;", "2");
  const auto printers = found();
  EXPECT_EQ(printers.at(0).name, "M");
  EXPECT_EQ(printers.at(1).name, "T");
}

TEST_F(DiscoveryTest, AddressesAUsbPrinterByItsDeviceFileIfItsSerialNumberIsUnusable) {
  plugInPrinter(0, "", "twice");
  plugInPrinter(1, "", "twice");
  plugInPrinter(2, "", "\x1b]0;gone");
  plugInPrinter(3, "", "once");
  const std::string node = "usb:" + (dev_ / "usb/lp").string();
  EXPECT_THAT(texts(), ElementsAre(node + "0", node + "1", node + "2", "usb:once"));
}

TEST_F(DiscoveryTest, DoesNotReportWhetherASerialLineIsReachable) {
  fs::create_directories(sys_ / "class/tty/tty1");  // a console: no hardware
  addLine("ttyS0", "4");
  addLine("ttyS1", "0");
  const auto lines = found();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].device, "serial:" + (dev_ / "ttyS0").string());
  EXPECT_EQ(lines[0].name, "serial line ttyS0");
  EXPECT_EQ(lines[0].via, Via::Serial);
  EXPECT_EQ(lines[0].reachable, std::nullopt);
}

TEST_F(DiscoveryTest, NamesASerialLineByTheTextsOfItsUsbDevice) {
  plugInLine("ttyUSB0", "UART \x1b[1m");
  const FoundDevice line = found().at(0);
  EXPECT_EQ(line.name, "serial line ttyUSB0 at UART \\u001b[1m");
  EXPECT_EQ(line.maker, "Quor Dalvane");
  EXPECT_EQ(line.serialNumber, "A1");
}

TEST_F(DiscoveryTest, IgnoresTheTextsOfAUsbDeviceThatIsNotTheSerialLinesParent) {
  plugInLine("ttyUSB0", "UART", "2-1.1/2-1.1:1.0");
  EXPECT_EQ(found().at(0).name, "serial line ttyUSB0 at UART");
  plugInLine("ttyUSB1", "UART", "2-1.2/2-1.2.1/2-1.2.1:1.0");
  EXPECT_EQ(found().at(1).name, "serial line ttyUSB1");
}

TEST_F(DiscoveryTest, SortsSerialLinesByName) {
  std::vector<std::string> expected;
  for (const int number : {3, 7, 1, 9, 0, 5, 8, 2, 6, 4}) {
    const std::string name = "ttyS" + std::to_string(number);
    addLine(name, "4");
    expected.push_back("serial:" + (dev_ / name).string());
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(texts(), expected);
}

TEST_F(DiscoveryTest, UsesTheFirstOfSeveralPermanentNamesOfASerialLine) {
  plugInLine("ttyUSB0", "UART");
  const fs::path folder = dev_ / "serial/by-id";
  for (const char name : {'d', 'h', 'b', 'j', 'a', 'f', 'i', 'c', 'g', 'e'}) {
    link(folder / std::string(1, name), "../../ttyUSB0");
  }
  EXPECT_THAT(texts(), ElementsAre("serial:" + (folder / "a").string()));
}

TEST_F(DiscoveryTest, AddressesASerialLineByItsPermanentName) {
  plugInLine("ttyUSB0", "UART");
  addLine("ttyS0", "4");
  const fs::path lasting = dev_ / "serial/by-id/usb-UART_A1";
  link(lasting, "../../ttyUSB0");
  EXPECT_THAT(texts(),
              ElementsAre("serial:" + (dev_ / "ttyS0").string(), "serial:" + lasting.string()));
}

}  // namespace
}  // namespace quordalvane
