#include "backends/bluez/BluetoothError.h"

namespace quordalvane::bluez {
namespace {

class BluetoothCategory : public std::error_category {
 public:
  const char* name() const noexcept override { return "bluetooth"; }

  std::string message(int code) const override {
    switch (static_cast<BluetoothError>(code)) {
      case BluetoothError::NoBus:
        return "the system's message bus cannot be reached";
      case BluetoothError::NoService:
        return "the Bluetooth service does not run";
      case BluetoothError::NoAnswer:
        return "the Bluetooth service does not answer";
      case BluetoothError::NoAdapter:
        return "the machine has no Bluetooth adapter";
      case BluetoothError::AdapterOff:
        return "the Bluetooth adapter is switched off";
      case BluetoothError::NotPaired:
        return "the printer is not paired";
      case BluetoothError::Ambiguous:
        return "more than one paired printer matches this device";
      case BluetoothError::NoSerialPort:
        return "the device offers no serial port";
      case BluetoothError::Rejected:
        return "the printer refused the connection";
      case BluetoothError::NotAuthorized:
        return "the connection was not authorised in time";
      case BluetoothError::HostDown:
        return "the printer does not answer over the air";
      case BluetoothError::InUse:
        return "in use by another program";
      case BluetoothError::ProfileTaken:
        return "another program holds the serial port profile of the Bluetooth service";
      case BluetoothError::Denied:
        return "this user may not use the Bluetooth service";
      case BluetoothError::Failed:
        return "the Bluetooth service cannot connect to the printer";
    }
    return "unknown";
  }

  std::error_condition default_error_condition(int code) const noexcept override {
    const auto error = static_cast<BluetoothError>(code);
    return error == BluetoothError::InUse || error == BluetoothError::ProfileTaken
               ? std::make_error_condition(std::errc::device_or_resource_busy)
               : std::error_condition(code, *this);
  }
};

}  // namespace

const std::error_category& bluetoothCategory() {
  static const BluetoothCategory category;
  return category;
}

void fail(BluetoothError error, const std::string& text) {
  throw std::system_error(static_cast<int>(error), bluetoothCategory(), text);
}

}  // namespace quordalvane::bluez
