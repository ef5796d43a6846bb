#include "backends/bluez/BluetoothAccessory.h"

#include <utility>

#include "backends/bluez/Connection.h"

namespace quordalvane::bluez {
namespace {

using namespace std::chrono_literals;

// How long an answer of the Bluetooth service is reused. A port asks for the texts of an accessory
// one by one; without reuse, the service would be asked for each text.
constexpr auto lookInterval = 1s;
constexpr auto lookTimeout = 3s;

}  // namespace

/// An answer of the service: the printer, or the reason why no printer can be chosen.
struct BluetoothAccessory::Look {
  SteadyTime at;
  std::optional<KnownDevice> printer;
  std::optional<std::system_error> why;
};

BluetoothAccessory::BluetoothAccessory(AccessoryIdentity identity, std::string place)
    : LinkAccessory(identity, [place] { return connectBluetooth(place); }),
      identity_(std::move(identity)),
      place_(std::move(place)) {}

std::optional<std::string> BluetoothAccessory::name() {
  if (identity_.name && !identity_.name->empty()) {
    return identity_.name;
  }
  const auto printer = look().printer;
  return printer && !printer->name.empty() ? printer->name : "bluetooth:" + place_;
}

std::vector<std::string> BluetoothAccessory::protocolStrings() {
  return look().printer ? LinkAccessory::protocolStrings() : std::vector<std::string>();
}

std::string BluetoothAccessory::description() {
  AccessoryIdentity identity = identity_;
  const auto printer = look().printer;
  if (printer && identity.address.empty()) {
    identity.address = printer->address;
  }
  identity.name = name();
  return LinkAccessory(std::move(identity), nullptr).description();
}

std::string BluetoothAccessory::lastError() {
  std::string ofOpening = LinkAccessory::lastError();
  if (!ofOpening.empty()) {
    return ofOpening;
  }
  const auto why = look().why;
  return why ? why->what() : "";
}

std::error_code BluetoothAccessory::lastErrorCode() {
  const std::error_code ofOpening = LinkAccessory::lastErrorCode();
  if (ofOpening) {
    return ofOpening;
  }
  const auto why = look().why;
  return why ? why->code() : std::error_code();
}

BluetoothAccessory::Look BluetoothAccessory::look() {
  const std::lock_guard lock(mutex_);
  const SteadyTime now = SteadyClock::now();
  if (last_ && now - last_->at < lookInterval) {
    return *last_;
  }
  Look fresh{.at = now, .printer = std::nullopt, .why = std::nullopt};
  try {
    Bus bus(now + lookTimeout);
    fresh.printer = choosePrinter(askService(bus, now + lookTimeout), place_);
  } catch (const std::system_error& error) {
    fresh.why = error;
  }
  fresh.at = SteadyClock::now();
  last_ = std::make_shared<Look>(fresh);
  return fresh;
}

}  // namespace quordalvane::bluez
