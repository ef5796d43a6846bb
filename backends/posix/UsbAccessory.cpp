#include "backends/posix/UsbAccessory.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "backends/posix/Holders.h"

namespace quordalvane::posix {
namespace {

std::optional<std::string> ifAny(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

}  // namespace

Descriptor openUsbPrinter(const UsbPrinter& printer) {
  const std::string node = printer.node.string();
  const int number = ::open(node.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (number == -1) {
    const int error = errno;
    const std::string holder = error == EBUSY ? ": in use by " + holderInWords(node) : "";
    throw std::system_error(error, std::generic_category(), node + holder);
  }
  return {number, usbKindOf(number)};
}

Descriptor::Kind usbKindOf(int number) {
  std::uint8_t nothing = 0;
  const bool isRefused = ::read(number, &nothing, 0) == -1 && errno == EINVAL;
  return isRefused ? Descriptor::Kind::MuteUsbPrinter : Descriptor::Kind::UsbPrinter;
}

UsbAccessory::UsbAccessory(AccessoryIdentity identity, std::string place, UsbRoots roots)
    : LinkAccessory(std::move(identity), [this] { return openUsbPrinter(find()); }),
      place_(std::move(place)),
      roots_(std::move(roots)) {}

std::optional<std::string> UsbAccessory::name() {
  auto given = LinkAccessory::name();
  if (given && !given->empty()) {
    return given;
  }
  const auto printer = seek();
  const std::string own = printer ? printer->makerAndModel() : "";
  return own.empty() ? "usb:" + place_ : own;
}

std::optional<std::string> UsbAccessory::serialNumber() {
  const auto given = LinkAccessory::serialNumber();
  const auto printer = given ? std::nullopt : seek();
  return printer ? ifAny(printer->serial) : given;
}

std::optional<std::string> UsbAccessory::modelNumber() {
  const auto given = LinkAccessory::modelNumber();
  const auto printer = given ? std::nullopt : seek();
  return printer ? ifAny(printer->model) : given;
}

std::vector<std::string> UsbAccessory::protocolStrings() {
  return seek() ? LinkAccessory::protocolStrings() : std::vector<std::string>();
}

std::string UsbAccessory::lastError() {
  const std::string ofOpening = LinkAccessory::lastError();
  std::optional<std::system_error> why;
  if (ofOpening.empty()) {
    seek(&why);
  }
  return why ? why->what() : ofOpening;
}

std::error_code UsbAccessory::lastErrorCode() {
  const std::error_code ofOpening = LinkAccessory::lastErrorCode();
  std::optional<std::system_error> why;
  if (!ofOpening) {
    seek(&why);
  }
  return why ? why->code() : ofOpening;
}

// Returns the printer. A printer that was found before has priority, because another printer may
// match `place` by now.
UsbPrinter UsbAccessory::find() {
  const std::lock_guard lock(mutex_);
  if (const auto again = findAgain()) {
    known_ = again;
  } else if (known_ && !known_->serial.empty() && !hasTwin_ && place_.starts_with('/')) {
    // Another device may have the printer's old node by now.
    return findUsbPrinter(known_->serial, roots_);
  } else {
    known_ = findUsbPrinter(place_, roots_);
  }
  return *known_;
}

// Searches for the printer that was found before; returns null if it is not plugged in. Some makers
// give all their printers the same serial number. After two such printers were found, only their
// nodes distinguish them.
std::optional<UsbPrinter> UsbAccessory::findAgain() {
  std::vector<UsbPrinter> same = known_ ? usbPrinters(roots_) : std::vector<UsbPrinter>();
  std::erase_if(same, [this](const UsbPrinter& one) { return !one.isSameDevice(*known_); });
  hasTwin_ = hasTwin_ || same.size() > 1;
  if (hasTwin_) {
    std::erase_if(same, [this](const UsbPrinter& one) { return one.node != known_->node; });
  }
  return same.empty() ? std::nullopt : std::optional(same.front());
}

std::optional<UsbPrinter> UsbAccessory::seek(std::optional<std::system_error>* why) {
  try {
    return find();
  } catch (const std::system_error& error) {
    if (why != nullptr) {
      *why = error;
    }
    return std::nullopt;
  }
}

}  // namespace quordalvane::posix
