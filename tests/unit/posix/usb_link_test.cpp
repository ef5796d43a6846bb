#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <string_view>
#include <vector>

#include "backends/posix/Link.h"
#include "backends/posix/UsbAccessory.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

/// A link whose printer driver is replaced by a pair of sockets. The sockets pass packets, which
/// may be empty.
struct DriverLink {
  explicit DriverLink(Descriptor::Kind kind) {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends), 0);
    link = std::make_unique<Link>(Descriptor(ends[0], kind));
    printer = std::make_unique<Descriptor>(ends[1], Descriptor::Kind::Socket);
  }

  void say(std::string_view packet) const {
    ASSERT_EQ(::send(printer->number(), packet.data(), packet.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(packet.size()));
  }

  std::unique_ptr<Link> link;
  std::unique_ptr<Descriptor> printer;
};

TEST(UsbLink, IsNotEndedByAnEmptyPacket) {
  const DriverLink driver(Descriptor::Kind::UsbPrinter);
  driver.say("");
  EXPECT_FALSE(driver.link->hasBytes());
  EXPECT_FALSE(driver.link->isLost());
  driver.say("");
  driver.say("x");
  driver.link->waitForBytes(10);
  ASSERT_TRUE(driver.link->hasBytes());
  std::uint8_t byte = 0;
  EXPECT_EQ(driver.link->read(&byte, 1), 1);
  EXPECT_EQ(byte, 'x');
}

TEST(UsbLink, IsLostIfThePrinterVanishes) {
  DriverLink driver(Descriptor::Kind::UsbPrinter);
  driver.printer.reset();
  driver.link->waitForBytes(10);
  EXPECT_TRUE(driver.link->isLost());
}

TEST(UsbLink, IsNotLostIfThePrinterNeverSends) {
  const DriverLink driver(Descriptor::Kind::MuteUsbPrinter);
  EXPECT_FALSE(driver.link->hasBytes());
  driver.link->waitForBytes(0.001);
  EXPECT_FALSE(driver.link->isLost());
  const std::uint8_t byte = 'x';
  EXPECT_EQ(driver.link->write(&byte, 1), 1);
}

TEST(UsbLink, EndsAWaitForBytesIfAMutePrinterIsUnplugged) {
  DriverLink driver(Descriptor::Kind::MuteUsbPrinter);
  driver.printer.reset();
  const Stopwatch watch;
  driver.link->waitForBytes(30);
  EXPECT_LT(watch.seconds(), 20);
  driver.link->noticeLoss();
  EXPECT_TRUE(driver.link->isLost());
}

TEST(UsbLink, CountsAnInterruptedTransferAsSent) {
  // Writing to address 0 of this process's memory fails with EIO. The driver reports the same error
  // for an interrupted transfer.
  const Descriptor driver(::open("/proc/self/mem", O_RDWR | O_CLOEXEC),
                          Descriptor::Kind::UsbPrinter);
  const std::uint8_t bytes[] = {1, 2, 3};
  EXPECT_EQ(driver.send(bytes, 3), 3);
}

TEST(UsbLink, SendsNothingToAPrinterThatIsUnplugged) {
  const auto pulled = test::openPseudoTerminal();
  const int line = ::open(pulled.line.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  ::close(pulled.master);  // now the line reports a hang-up, as the driver does
  const Descriptor driver(line, Descriptor::Kind::UsbPrinter);
  const std::uint8_t bytes[] = {1, 2, 3};
  EXPECT_EQ(driver.send(bytes, 3), -1);
  EXPECT_EQ(errno, ENODEV);
  std::uint8_t heard = 0;
  EXPECT_EQ(driver.receive(&heard, 1), 0);
}

TEST(UsbLink, IsTreatedAsMuteIfTheDriverRefusesReads) {
  const Descriptor refusing(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), Descriptor::Kind::Terminal);
  EXPECT_EQ(usbKindOf(refusing.number()), Descriptor::Kind::MuteUsbPrinter);
  const auto terminal = test::openPseudoTerminal();
  const Descriptor answering(terminal.master, Descriptor::Kind::Terminal);
  EXPECT_EQ(usbKindOf(answering.number()), Descriptor::Kind::UsbPrinter);
  const Descriptor folder(::open("/", O_RDONLY | O_CLOEXEC), Descriptor::Kind::Terminal);
  EXPECT_EQ(usbKindOf(folder.number()), Descriptor::Kind::UsbPrinter) << "another error";
}

TEST(UsbLink, ReportsNoPortStateIfTheDescriptorIsASocket) {
  const DriverLink driver(Descriptor::Kind::Socket);
  EXPECT_EQ(driver.link->portState(), "");
}

TEST(UsbLink, HasBytesUnderWayWhileTheDriverHasNoSpace) {
  int ends[2];
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends), 0);
  const Descriptor driver(ends[0], Descriptor::Kind::UsbPrinter);
  const Descriptor printer(ends[1], Descriptor::Kind::Socket);
  EXPECT_FALSE(driver.hasUnderWay());
  std::vector<std::uint8_t> piece(65536);
  while (driver.send(piece.data(), piece.size()) > 0) {
  }
  EXPECT_TRUE(driver.hasUnderWay());
  while (printer.receive(piece.data(), piece.size()) > 0) {
  }
  EXPECT_FALSE(driver.hasUnderWay());
}

}  // namespace
}  // namespace quordalvane::posix
