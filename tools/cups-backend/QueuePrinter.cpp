#include "tools/cups-backend/QueuePrinter.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "backends/DeviceIdentity.h"
#include "backends/Devices.h"
#include "discovery/DeviceId.h"
#include "locks/DeviceLock.h"
#include "text/Quoted.h"

namespace quordalvane::cups {
namespace {

// The longest wait for other jobs that use the printer. The limit should never be reached, because
// a job releases the printer at the latest when its process ends.
constexpr std::chrono::milliseconds longestTurn = std::chrono::hours(24);

}  // namespace

QueuePrinter::QueuePrinter(const DeviceUri& uri, std::function<void()> onWait)
    : uri_(uri),
      onWait_(std::move(onWait)),
      platform_(std::make_shared<posix::PosixPlatform>()),
      accessory_(makeAccessory(parseDeviceSpec(uri.device), platform_->clock())) {
  platform_->attach(accessory_);
}

void QueuePrinter::open() {
  if (isOpen()) {
    return;
  }
  takeTurn();
  auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", uri_.timeout, uri_.emulation, platform_);
  if (port == nullptr) {
    throw OutOfReach("the system cannot start a thread for the port");
  }
  if (uri_.endTimeout) {
    port->setEndCheckedBlockTimeoutMillis(*uri_.endTimeout);
  }
  if (!port->open()) {
    turn_.reset();
    const std::string why = lastOpenError(*accessory_);
    if (why.empty()) {
      throw std::invalid_argument("the device " + inQuotes(uri_.device) +
                                  " does not count as a printer because of its keys manufacturer "
                                  "or protocol; leave these keys out");
    }
    throw OutOfReach(why);
  }
  port_ = std::move(port);
}

void QueuePrinter::close() {
  if (isOpen()) {
    port_->close();
    port_.reset();
  }
  turn_.reset();
}

/// Waits until other jobs have released the printer. If the locks of the system cannot be used, the
/// job does not wait: it is more important to print the job than to keep all jobs in order.
void QueuePrinter::takeTurn() {
  try {
    turn_ = takeDevice(deviceIdentity(parseDeviceSpec(uri_.device)), longestTurn, onWait_);
  } catch (const std::system_error&) {
    return;
  }
  if (!turn_) {
    throw OutOfReach("another job has been using the printer for a day");
  }
}

std::string QueuePrinter::deviceId() const {
  return deviceIdOf(accessory_->manufacturer().value_or(""),
                    accessory_->modelNumber().value_or(accessory_->name().value_or("")),
                    accessory_->serialNumber().value_or(""));
}

}  // namespace quordalvane::cups
