#pragma once

#include <memory>
#include <optional>
#include <string>

#include "backends/bluez/Bus.h"
#include "backends/bluez/Service.h"
#include "backends/posix/Descriptor.h"

namespace quordalvane::bluez {

/// Registers the serial port profile with the Bluetooth service while it exists. Only one program
/// of the machine can register it at a time, so it is kept only while connecting, not for a whole
/// session.
class SerialPortProfile {
 public:
  /// Registers the profile on `bus`, which must outlive this object. If another program has
  /// registered it, tries again until `deadline`. Throws a `std::system_error` with a code of
  /// `bluetoothCategory()` if it fails.
  SerialPortProfile(Bus& bus, SteadyTime deadline);

  /// Unregisters the profile. If the service does not answer within a second, it will remove the
  /// profile by itself when this program leaves the bus.
  ~SerialPortProfile();
  SerialPortProfile(const SerialPortProfile&) = delete;
  SerialPortProfile& operator=(const SerialPortProfile&) = delete;

  /// Connects to `printer` and returns the connection. Throws a `std::system_error` with a code of
  /// `bluetoothCategory()` if it fails; the code is `NotAuthorized` if `deadline` passes.
  posix::Descriptor connect(const KnownDevice& printer, SteadyTime deadline);

 private:
  void serve();
  void takeRegistration(SteadyTime deadline);
  void take(const sdbus::ObjectPath& device, const sdbus::UnixFd& file);
  void callConnect(const KnownDevice& printer, SteadyTime deadline);

  Bus& bus_;
  std::unique_ptr<sdbus::IObject> object_;
  std::string awaited_;                     // the path of the device whose connection is expected
  std::optional<posix::Descriptor> taken_;  // the connection that has arrived
};

}  // namespace quordalvane::bluez
