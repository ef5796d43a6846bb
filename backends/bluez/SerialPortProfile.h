#pragma once

#include <memory>
#include <optional>
#include <string>

#include "backends/bluez/Bus.h"
#include "backends/bluez/Service.h"
#include "backends/posix/Descriptor.h"

namespace quordalvane::bluez {

/// While this object exists, the serial port profile is registered with the Bluetooth service. Only
/// one program of the machine at a time can register the profile. So a program keeps this object
/// only while it connects, not for a whole session.
class SerialPortProfile {
 public:
  /// Registers the profile on `bus`, which must outlive this object. If another program has
  /// registered the profile, tries again until `deadline`. Throws a `std::system_error` with a code
  /// of `bluetoothCategory()` if all attempts fail.
  SerialPortProfile(Bus& bus, SteadyTime deadline);

  /// Unregisters the profile, and waits one second for the answer. If the service does not answer,
  /// it will remove the profile when this program leaves the bus.
  ~SerialPortProfile();
  SerialPortProfile(const SerialPortProfile&) = delete;
  SerialPortProfile& operator=(const SerialPortProfile&) = delete;

  /// Connects to `printer` and returns the connection. Throws a `std::system_error` with a code of
  /// `bluetoothCategory()` on failure; the code is `NotAuthorized` if `deadline` passes.
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
