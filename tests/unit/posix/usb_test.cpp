#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "backends/posix/UsbAccessory.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TemporaryFolder.h"

namespace quordalvane::posix {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

void write(const fs::path& file, const std::string& text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << text << "\n";
}

/// The system folders that list USB printers, replaced by a folder of this test.
class UsbTest : public testing::Test {
 protected:
  UsbRoots roots() const { return {.sys = folder_.file("sys"), .dev = folder_.file("dev")}; }

  /// Plugs in a printer whose device file has the number `lp`.
  void plugIn(int lp, const std::string& id, const std::string& serial,
              const std::string& model = "04b8:0202", const std::string& protocol = "02") {
    const std::string name = "lp" + std::to_string(lp);
    const fs::path device = roots().sys / "devices" / ("1-" + std::to_string(lp));
    // The second interface of a composite device, for example.
    const fs::path interface = device / "1-1:1.1";
    write(device / "idVendor", model.substr(0, 4));
    write(device / "idProduct", model.substr(5));
    if (!serial.empty()) {
      write(device / "serial", serial);
    }
    write(interface / "ieee1284_id", id);
    write(interface / "bInterfaceProtocol", protocol);
    fs::create_directories(roots().sys / "class/usbmisc" / name);
    fs::create_directory_symlink(interface, roots().sys / "class/usbmisc" / name / "device");
    write(roots().dev / "usb" / name, "");
  }

  void pull(int lp) {
    const std::string name = "lp" + std::to_string(lp);
    fs::remove_all(roots().sys / "class/usbmisc" / name);
    fs::remove_all(roots().sys / "devices" / ("1-" + std::to_string(lp)));
    fs::remove(roots().dev / "usb" / name);
  }

  std::string nodeOf(const std::string& place) {
    return findUsbPrinter(place, roots()).node.filename();
  }

  std::error_code reason(const std::string& place, std::string* text = nullptr) {
    try {
      findUsbPrinter(place, roots());
    } catch (const std::system_error& error) {
      if (text != nullptr) {
        *text = error.what();
      }
      return error.code();
    }
    return {};
  }

  static std::error_code code(UsbError error) { return {static_cast<int>(error), usbCategory()}; }

  const test::TemporaryFolder folder_;
};

const std::string till = "MFG:Quor Dalvane;CMD:ESCPOS;MDL:XQ700;CLS:PRINTER;";

TEST_F(UsbTest, ReadsMakerModelAndSerialNumberOfAPrinter) {
  plugIn(0, till, "S 1/7");
  const UsbPrinter printer = findUsbPrinter("", roots());
  EXPECT_EQ(printer.maker, "Quor Dalvane");
  EXPECT_EQ(printer.model, "XQ700");
  EXPECT_EQ(printer.serial, "S 1/7");
  EXPECT_EQ(printer.vendor + ":" + printer.product, "04b8:0202");
}

TEST_F(UsbTest, ReadsLongFieldNamesOfTheDeviceId) {
  plugIn(0, "MANUFACTURER: M ;MODEL:T;SERIALNUMBER:77", "");
  const UsbPrinter printer = findUsbPrinter("", roots());
  EXPECT_EQ(printer.maker, "M");
  EXPECT_EQ(printer.model, "T");
  EXPECT_EQ(printer.serial, "77");
}

TEST_F(UsbTest, IgnoresAFieldWithoutAValueInTheDeviceId) {
  plugIn(0, "SN;MFG;MDL:T;", "");
  const UsbPrinter printer = findUsbPrinter("", roots());
  EXPECT_EQ(printer.serial, "");
  EXPECT_EQ(printer.maker, "");
  EXPECT_EQ(printer.model, "T");
}

TEST(UsbPrinter, IsIdentifiedByUsbFieldsAndWithoutASerialNumberAlsoByDeviceFile) {
  const UsbPrinter one{"/dev/usb/lp0", "04b8", "0202", "S1", "Maker", "Model"};
  const UsbPrinter elsewhere{"/dev/usb/lp1", "04b8", "0202", "S1", "Maker", "Model"};
  EXPECT_TRUE(one.isSameDevice(elsewhere));
  for (auto text : {&UsbPrinter::vendor, &UsbPrinter::product, &UsbPrinter::serial,
                    &UsbPrinter::maker, &UsbPrinter::model}) {
    UsbPrinter other = one;
    other.*text = "other";
    EXPECT_FALSE(one.isSameDevice(other));
  }
  UsbPrinter nameless = one;
  nameless.serial = "";
  EXPECT_TRUE(nameless.isSameDevice(nameless));
  UsbPrinter namelessElsewhere = elsewhere;
  namelessElsewhere.serial = "";
  EXPECT_FALSE(nameless.isSameDevice(namelessElsewhere));
}

TEST(UsbPrinter, IsNamedByItsMakerAndItsModelAsFarAsTheyAreKnown) {
  UsbPrinter printer;
  EXPECT_EQ(printer.makerAndModel(), "");
  printer.maker = "Maker";
  EXPECT_EQ(printer.makerAndModel(), "Maker");
  printer.model = "Model";
  EXPECT_EQ(printer.makerAndModel(), "Maker Model");
  printer.maker = "";
  EXPECT_EQ(printer.makerAndModel(), "Model");
}

TEST(UsbErrors, OnlyAPrinterInUseIsReportedAsABusyDevice) {
  const auto errorOf = [](UsbError error) {
    return std::error_code(static_cast<int>(error), usbCategory());
  };
  EXPECT_EQ(errorOf(UsbError::HeldByPrintSystem), std::errc::device_or_resource_busy);
  EXPECT_NE(errorOf(UsbError::NotPluggedIn), std::errc::device_or_resource_busy);
  EXPECT_EQ(usbCategory().message(99), "unknown");
}

TEST_F(UsbTest, OtherDevicesOfTheDriverAreNotListed) {
  plugIn(0, till, "S1");
  fs::create_directories(roots().sys / "class/usbmisc/hiddev0");
  EXPECT_EQ(usbPrinters(roots()).size(), 1U);
}

TEST_F(UsbTest, APrinterWithoutADeviceIdIsNamedBySchemeAndAddress) {
  plugIn(0, "", "");
  UsbAccessory accessory({}, "04b8:0202", roots());
  EXPECT_EQ(accessory.name(), "usb:04b8:0202");
  EXPECT_EQ(accessory.serialNumber(), std::nullopt);
  EXPECT_EQ(accessory.modelNumber(), std::nullopt);
}

TEST_F(UsbTest, AnAccessoryWhosePrinterIsUnpluggedHasOnlyTheGivenIdentity) {
  AccessoryIdentity given;
  given.name = "";
  UsbAccessory accessory(given, "S1", roots());
  EXPECT_EQ(accessory.name(), "usb:S1");
  EXPECT_EQ(accessory.serialNumber(), std::nullopt);
  EXPECT_EQ(accessory.modelNumber(), std::nullopt);
}

TEST_F(UsbTest, PrintersWithoutADeviceIdAreListedByTheirDeviceFilesAlone) {
  plugIn(0, "", "");
  plugIn(1, "", "");
  std::string text;
  EXPECT_EQ(reason("", &text), code(UsbError::Ambiguous));
  EXPECT_THAT(text, HasSubstr("usb/lp0, usb:"));
}

TEST_F(UsbTest, AZeroAtTheEndOfASystemFileIsNotPartOfItsText) {
  plugIn(0, till, "");
  std::ofstream(roots().sys / "devices/1-0/serial") << "S1" << '\0' << '\n';
  EXPECT_EQ(findUsbPrinter("", roots()).serial, "S1");
}

TEST_F(UsbTest, CutsVeryLongDeviceIds) {
  for (const std::string& id : {std::string(), std::string(";;:;:"), std::string("MFG"),
                                std::string(100'000, ';'), "MFG:" + std::string(100'000, 'x')}) {
    plugIn(0, id, "");
    EXPECT_LE(findUsbPrinter("", roots()).maker.size(), 4096U);
    pull(0);
  }
}

TEST_F(UsbTest, FindsAPrinterBySerialNumberModelOrDeviceFile) {
  plugIn(0, till, "S 1/7");
  plugIn(10, till, "second", "0519:0003");
  plugIn(2, till, "", "0519:00aB");
  EXPECT_EQ(nodeOf("S 1/7"), "lp0");
  EXPECT_EQ(nodeOf("second"), "lp10");
  EXPECT_EQ(nodeOf("04b8:0202"), "lp0");
  EXPECT_EQ(nodeOf("0519:00Ab"), "lp2");
  EXPECT_EQ(nodeOf((roots().dev / "usb/lp10").string()), "lp10");
}

TEST_F(UsbTest, FindsAPrinterByASymbolicLinkToItsDeviceFile) {
  plugIn(0, till, "A");
  plugIn(1, till, "B");
  fs::create_symlink(roots().dev / "usb/lp1", roots().dev / "receipts");
  EXPECT_EQ(nodeOf((roots().dev / "receipts").string()), "lp1");
}

TEST_F(UsbTest, TheDeviceTextOfAListedPrinterFindsThisPrinter) {
  plugIn(0, till, "a, b\\c");
  plugIn(1, till, "/slash");
  const auto printers = usbPrinters(roots());
  EXPECT_EQ(textOf(printers.front(), printers), "usb:a\\, b\\\\c");
  EXPECT_EQ(textOf(printers.back(), printers), "usb:" + (roots().dev / "usb/lp1").string());
  EXPECT_EQ(nodeOf("a, b\\c"), "lp0");
}

TEST_F(UsbTest, TheErrorOfTwoMatchingPrintersNamesBoth) {
  plugIn(0, till, "A");
  plugIn(1, till, "");
  std::string text;
  EXPECT_EQ(reason("", &text), code(UsbError::Ambiguous));
  EXPECT_THAT(text, AllOf(HasSubstr("usb:A (Quor Dalvane XQ700)"), HasSubstr("usb/lp1")));
  EXPECT_EQ(reason("04b8:0202"), code(UsbError::Ambiguous));
}

TEST_F(UsbTest, NamesPrintersWithTheSameSerialNumberByTheirDeviceFiles) {
  plugIn(0, till, "0123456789");
  plugIn(1, till, "0123456789");
  std::string text;
  EXPECT_EQ(reason("0123456789", &text), code(UsbError::Ambiguous));
  EXPECT_THAT(text, AllOf(HasSubstr("usb/lp0 ("), HasSubstr("usb/lp1 (")));
}

TEST_F(UsbTest, ReportsThatThePrinterIsNotPluggedIn) {
  EXPECT_EQ(reason(""), code(UsbError::NotPluggedIn));
  plugIn(0, till, "A");
  std::string text;
  EXPECT_EQ(reason("B", &text), code(UsbError::NotPluggedIn));
  EXPECT_THAT(text, HasSubstr("plugged in: usb:A"));
}

TEST_F(UsbTest, ReportsThatTheDriverIsMissing) {
  write(roots().sys / "bus/usb/devices/1-1:1.0/bInterfaceClass", "07");
  EXPECT_EQ(reason(""), code(UsbError::NoDriver));
  write(roots().sys / "bus/usb/devices/1-1:1.0/bInterfaceProtocol", "04");
  EXPECT_EQ(reason(""), code(UsbError::NotPluggedIn)) << "the driver leaves that one to others";
}

TEST_F(UsbTest, ReportsThatAPrinterWasNotGivenBackToTheDriver) {
  write(roots().sys / "bus/usb/devices/1-1:1.0/bInterfaceClass", "07");
  fs::create_directories(roots().sys / "module/usblp");
  EXPECT_EQ(reason(""), code(UsbError::TakenFromDriver));
}

TEST_F(UsbTest, NamesTheProgramThatTookAPrinterFromTheDriver) {
  const fs::path device = roots().sys / "bus/usb/devices/1-1";
  const fs::path interface = device / "1-1:1.0";
  write(device / "busnum", "1");
  write(device / "devnum", "14");
  write(interface / "bInterfaceClass", "07");
  fs::create_directory_symlink("../../drivers/usbfs", interface / "driver");
  fs::create_directory_symlink(interface, roots().sys / "bus/usb/devices/1-1:1.0");
  EXPECT_EQ(reason(""), code(UsbError::HeldByPrintSystem));
  EXPECT_EQ(reason(""), std::errc::device_or_resource_busy);
  const fs::path node = roots().dev / "bus/usb/001/014";
  write(node, "");
  const pid_t other = ::fork();
  if (other == 0) {
    ::open(node.c_str(), O_RDWR);
    ::raise(SIGSTOP);
    ::_exit(0);
  }
  ASSERT_EQ(::waitpid(other, nullptr, WUNTRACED), other);
  std::string text;
  reason("", &text);
  ::kill(other, SIGKILL);
  ::waitpid(other, nullptr, 0);
  EXPECT_THAT(text, HasSubstr("(process " + std::to_string(other) + ")"));
}

TEST_F(UsbTest, ReportsThatAHubSwitchedOffThePower) {
  const fs::path port = roots().sys / "bus/usb/devices/1-0:1.0/usb1-port1";
  write(port / "over_current_count", "0");
  EXPECT_EQ(reason(""), code(UsbError::NotPluggedIn));
  write(port / "over_current_count", "2");
  EXPECT_EQ(reason(""), code(UsbError::DroppedByHub));
}

TEST_F(UsbTest, AnAccessoryHasTheTextsOfThePrinterByDefault) {
  plugIn(0, till, "S1");
  UsbAccessory accessory({}, "", roots());
  EXPECT_EQ(accessory.name(), "Quor Dalvane XQ700");
  EXPECT_EQ(accessory.modelNumber(), "XQ700");
  EXPECT_EQ(accessory.serialNumber(), "S1");
  EXPECT_EQ(accessory.manufacturer(), "quor dalvane");
  AccessoryIdentity given;
  given.name = "Till";
  given.modelNumber = "M";
  given.serialNumber = "S";
  UsbAccessory named(given, "", roots());
  EXPECT_EQ(named.name(), "Till");
  EXPECT_EQ(named.modelNumber(), "M");
  EXPECT_EQ(named.serialNumber(), "S");
}

TEST_F(UsbTest, AnAccessoryAnnouncesNoProtocolWhileItsPrinterIsUnplugged) {
  UsbAccessory accessory({}, "S1", roots());
  EXPECT_TRUE(accessory.protocolStrings().empty());
  EXPECT_EQ(accessory.lastErrorCode(), code(UsbError::NotPluggedIn));
  EXPECT_THAT(accessory.lastError(), HasSubstr("usb:S1"));
  plugIn(0, till, "S1");
  EXPECT_FALSE(accessory.protocolStrings().empty());
  EXPECT_EQ(accessory.lastError(), "");
  EXPECT_FALSE(accessory.lastErrorCode());
  pull(0);
  EXPECT_TRUE(accessory.protocolStrings().empty());
}

TEST_F(UsbTest, FindsAPrinterAgainBySerialNumberAndNotByDeviceFile) {
  plugIn(0, till, "mine");
  UsbAccessory accessory({}, (roots().dev / "usb/lp0").string(), roots());
  EXPECT_EQ(accessory.serialNumber(), "mine");
  pull(0);
  plugIn(0, till, "another");
  EXPECT_TRUE(accessory.protocolStrings().empty());
  plugIn(1, till, "mine");
  EXPECT_EQ(accessory.serialNumber(), "mine");
  EXPECT_FALSE(accessory.protocolStrings().empty());
}

TEST_F(UsbTest, ANewPrinterAtTheDeviceFileReplacesAPrinterWithoutASerialNumber) {
  plugIn(0, till, "");
  UsbAccessory accessory({}, (roots().dev / "usb/lp0").string(), roots());
  EXPECT_EQ(accessory.modelNumber(), "XQ700");
  pull(0);
  plugIn(0, "MDL:T;", "");
  EXPECT_EQ(accessory.modelNumber(), "T");
}

TEST_F(UsbTest, NeverConfusesTwoPrintersWithTheSameSerialNumber) {
  plugIn(0, till, "0123456789");
  const auto bar = test::openPseudoTerminal();
  const Descriptor printer(bar.master, Descriptor::Kind::Terminal);
  plugIn(1, till, "0123456789");
  fs::remove(roots().dev / "usb/lp1");
  fs::create_symlink(bar.line, roots().dev / "usb/lp1");
  UsbAccessory accessory({}, (roots().dev / "usb/lp1").string(), roots());
  EXPECT_FALSE(accessory.protocolStrings().empty());
  const auto session = accessory.openSession("com.quordalvane.receipt");
  ASSERT_NE(session, nullptr) << accessory.lastError();
  const std::uint8_t byte = 'x';
  session->outputStream()->write(&byte, 1);
  std::uint8_t heard = 0;
  EXPECT_EQ(printer.receiveUntil(&heard, 1, deadlineIn(10)), 1);
  pull(1);
  EXPECT_TRUE(accessory.protocolStrings().empty());
}

TEST_F(UsbTest, ThrowsASystemErrorIfTheDeviceFileVanishesBeforeTheOpen) {
  plugIn(0, till, "A");
  const UsbPrinter printer = findUsbPrinter("", roots());
  pull(0);
  try {
    openUsbPrinter(printer);
    FAIL() << "it opened";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
  }
}

TEST_F(UsbTest, AnAccessoryReportsWhyItsDeviceFileDidNotOpen) {
  plugIn(0, till, "A");
  fs::remove(roots().dev / "usb/lp0");
  UsbAccessory accessory({}, "A", roots());
  EXPECT_EQ(accessory.openSession("com.quordalvane.receipt"), nullptr);
  EXPECT_THAT(accessory.lastError(), HasSubstr("usb/lp0: No such file"));
  EXPECT_EQ(accessory.lastErrorCode(), std::errc::no_such_file_or_directory);
}

TEST_F(UsbTest, OpensTheDeviceFileOfThePluggedInPrinter) {
  const auto terminal = test::openPseudoTerminal();
  const Descriptor printer(terminal.master, Descriptor::Kind::Terminal);
  plugIn(3, till, "A");
  fs::remove(roots().dev / "usb/lp3");
  fs::create_symlink(terminal.line, roots().dev / "usb/lp3");
  UsbAccessory accessory({}, "A", roots());
  const auto session = accessory.openSession("com.quordalvane.receipt");
  ASSERT_NE(session, nullptr) << accessory.lastError();
  const std::uint8_t byte = 'x';
  EXPECT_EQ(session->outputStream()->write(&byte, 1), 1);
  std::uint8_t heard = 0;
  EXPECT_EQ(printer.receiveUntil(&heard, 1, deadlineIn(10)), 1);
  EXPECT_EQ(heard, 'x');
}

}  // namespace
}  // namespace quordalvane::posix
