#include "tests/machine/gadget/UsbGadget.h"

#include <fcntl.h>
#include <linux/usb/ch9.h>
#include <linux/usb/functionfs.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <vector>

namespace quordalvane::machine {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t printerClass = 7;
constexpr std::uint8_t printerSubclass = 1;
constexpr std::uint8_t getDeviceId = 0;
constexpr std::uint8_t getPortStatus = 1;

[[noreturn]] void fail(const std::string& step) {
  throw std::system_error(errno, std::generic_category(), step);
}

void set(const fs::path& file, const std::string& text) {
  std::ofstream stream(file);
  if (!(stream << text << "\n" << std::flush)) {
    fail(file.string());
  }
}

// A transfer waits for the host, and fails at once while the cable is out.
int opened(const fs::path& file) {
  const int number = ::open(file.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (number < 0) {
    fail(file.string());
  }
  return number;
}

void append(Bytes& to, const Bytes& more) {
  to.insert(to.end(), more.begin(), more.end());
}

Bytes word(std::size_t value) {
  Bytes bytes;
  for (int i = 0; i < 4; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
  }
  return bytes;
}

Bytes interfaceOf(int number, int endpoints, int deviceClass, int subclass, int protocol) {
  const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
  return {USB_DT_INTERFACE_SIZE, USB_DT_INTERFACE, byte(number),   0, byte(endpoints),
          byte(deviceClass),     byte(subclass),   byte(protocol), 0};
}

Bytes endpoint(std::uint8_t address, std::size_t packet) {
  return {USB_DT_ENDPOINT_SIZE,
          USB_DT_ENDPOINT,
          address,
          USB_ENDPOINT_XFER_BULK,
          static_cast<std::uint8_t>(packet),
          static_cast<std::uint8_t>(packet >> 8),
          0};
}

// The interfaces with their endpoints, at one speed. The endpoint that receives from the host is
// the first.
Bytes descriptorsFor(const UsbIdentity& identity, std::size_t packet) {
  Bytes bytes;
  if (identity.isSecondInterface) {
    append(bytes, interfaceOf(0, 0, USB_CLASS_VENDOR_SPEC, 0, 0));
  }
  append(bytes, interfaceOf(identity.isSecondInterface ? 1 : 0, 2, printerClass, printerSubclass,
                            identity.protocol));
  append(bytes, endpoint(1 | USB_DIR_OUT, packet));
  append(bytes, endpoint(2 | USB_DIR_IN, packet));
  return bytes;
}

Bytes allDescriptors(const UsbIdentity& identity) {
  constexpr std::size_t fullSpeedPacket = 64;
  const Bytes full = descriptorsFor(identity, fullSpeedPacket);
  const Bytes high = descriptorsFor(identity, UsbGadget::packetSize);
  const std::size_t count = identity.isSecondInterface ? 4 : 3;
  Bytes counts = word(count);
  append(counts, word(count));
  Bytes bytes = word(FUNCTIONFS_DESCRIPTORS_MAGIC_V2);
  append(bytes, word(12 + counts.size() + full.size() + high.size()));
  append(bytes, word(FUNCTIONFS_HAS_FS_DESC | FUNCTIONFS_HAS_HS_DESC));
  append(bytes, counts);
  append(bytes, full);
  append(bytes, high);
  return bytes;
}

Bytes noStrings() {
  Bytes bytes = word(FUNCTIONFS_STRINGS_MAGIC);
  append(bytes, word(16));
  append(bytes, word(0));
  append(bytes, word(0));
  return bytes;
}

bool hand(int file, const void* bytes, std::size_t length) {
  return ::write(file, bytes, length) == static_cast<ssize_t>(length);
}

void describeTo(int control, const Bytes& bytes) {
  if (!hand(control, bytes.data(), bytes.size())) {
    fail("the descriptors");
  }
}

// The text, preceded by a length of two bytes, which includes these two bytes.
std::string withLength(const std::string& text) {
  const std::size_t length = text.size() + 2;
  return {std::string{static_cast<char>(length >> 8), static_cast<char>(length)} + text};
}

}  // namespace

UsbGadget::UsbGadget(const UsbIdentity& identity, const std::string& controller)
    : controller_(controller),
      gadget_("/sys/kernel/config/usb_gadget/" + controller),
      function_(gadget_ / "functions" / ("ffs." + controller)),
      files_("/dev/" + controller),
      deviceId_(withLength(identity.id)) {
  removeAll();
  describe(identity);
  end_ = ::eventfd(0, EFD_CLOEXEC);
  server_ = std::thread([this] { serveControl(); });
}

UsbGadget::~UsbGadget() {
  pull();
  ::eventfd_write(end_, 1);
  server_.join();
  for (const int number : {fromHost_, toHost_, control_, end_}) {
    ::close(number);
  }
  removeAll();
}

void UsbGadget::describe(const UsbIdentity& identity) {
  fs::create_directories(function_);
  fs::create_directories(gadget_ / "strings/0x409");
  fs::create_directories(gadget_ / "configs/c.1");
  set(gadget_ / "idVendor", "0x" + identity.vendor);
  set(gadget_ / "idProduct", "0x" + identity.product);
  if (!identity.serial.empty()) {
    set(gadget_ / "strings/0x409/serialnumber", identity.serial);
  }
  fs::create_directory_symlink(function_, gadget_ / "configs/c.1/printer");
  fs::create_directories(files_);
  if (::mount(controller_.c_str(), files_.c_str(), "functionfs", 0, nullptr) != 0) {
    fail(files_.string());
  }
  control_ = opened(files_ / "ep0");
  describeTo(control_, allDescriptors(identity));
  describeTo(control_, noStrings());
  fromHost_ = opened(files_ / "ep1");
  toHost_ = opened(files_ / "ep2");
}

// Also removes the USB gadget that an earlier, killed program has left.
void UsbGadget::removeAll() {
  std::error_code error;
  ::umount(files_.c_str());
  for (const fs::path& path : {gadget_ / "configs/c.1/printer", gadget_ / "configs/c.1", function_,
                               gadget_ / "strings/0x409", gadget_, files_}) {
    fs::remove(path, error);
  }
}

void UsbGadget::plugIn() {
  {
    const std::lock_guard lock(cable_);
    set(gadget_ / "UDC", controller_);
  }
  isSetUp_.wait(false);
}

void UsbGadget::pull() {
  const std::lock_guard lock(cable_);
  std::ofstream(gadget_ / "UDC") << "\n" << std::flush;
}

std::ptrdiff_t UsbGadget::take(std::uint8_t* buffer) {
  return ::read(fromHost_, buffer, packetSize);
}

bool UsbGadget::say(std::span<const std::uint8_t> bytes) {
  return hand(toHost_, bytes.data(), bytes.size());
}

void UsbGadget::stall() {
  // A transfer in the wrong direction stalls the endpoint.
  const std::uint8_t byte = 0;
  if (::write(fromHost_, &byte, 1) >= 0 || errno != EBADMSG) {
    fail("the stall");
  }
}

void UsbGadget::serveControl() {
  pollfd awaited[] = {{.fd = control_, .events = POLLIN, .revents = 0},
                      {.fd = end_, .events = POLLIN, .revents = 0}};
  while (::poll(awaited, std::size(awaited), -1) > 0 && awaited[1].revents == 0) {
    usb_functionfs_event event{};
    if (::read(control_, &event, sizeof event) != sizeof event) {
      continue;
    }
    if (event.type == FUNCTIONFS_SETUP) {
      answer(event.u.setup.bRequest, event.u.setup.wLength);
    } else if (event.type == FUNCTIONFS_ENABLE || event.type == FUNCTIONFS_DISABLE) {
      isSetUp_ = event.type == FUNCTIONFS_ENABLE;
      isSetUp_.notify_all();
    }
  }
}

void UsbGadget::answer(std::uint8_t request, std::uint16_t longest) {
  const std::string status(1, static_cast<char>(portStatus_.load()));
  const std::string text = request == getDeviceId     ? deviceId_
                           : request == getPortStatus ? status
                                                      : "";
  const std::size_t length = std::min<std::size_t>(text.size(), longest);
  const bool isAnswered = length == 0 ? ::read(control_, nullptr, 0) == 0  // acknowledges it
                                      : hand(control_, text.data(), length);
  if (!isAnswered) {
    isSetUp_ = false;  // the host has disconnected meanwhile
  }
}

}  // namespace quordalvane::machine
