#pragma once

#include <memory>
#include <optional>
#include <string>

#include "backends/bluez/Bus.h"
#include "backends/bluez/Service.h"
#include "backends/posix/Descriptor.h"

namespace quordalvane::bluez {

/// The serial port profile, registered with the Bluetooth service as long as this lives. The
/// service has one for all programs of the machine, so it is held for a connection alone and not
/// for its session.
class SerialPortProfile {
 public:
  /// Registers it on `bus`, which must outlive this. While another program holds it, tries again
  /// until `deadline`. Throws a `std::system_error` with a code of `bluetoothCategory()`.
  SerialPortProfile(Bus& bus, SteadyTime deadline);

  /// Unregisters it. A service that does not answer within a second removes it by itself when this
  /// program leaves the bus.
  ~SerialPortProfile();
  SerialPortProfile(const SerialPortProfile&) = delete;
  SerialPortProfile& operator=(const SerialPortProfile&) = delete;

  /// Connects to `printer` and returns the connection. Throws a `std::system_error` with a code of
  /// `bluetoothCategory()`; `NotAuthorized` if it has not succeeded by `deadline`.
  posix::Descriptor connect(const KnownDevice& printer, SteadyTime deadline);

 private:
  void serve();
  void takeRegistration(SteadyTime deadline);
  void take(const sdbus::ObjectPath& device, const sdbus::UnixFd& file);
  void callConnect(const KnownDevice& printer, SteadyTime deadline);

  Bus& bus_;
  std::unique_ptr<sdbus::IObject> object_;
  std::string awaited_;                     // the device whose connection may arrive
  std::optional<posix::Descriptor> taken_;  // the connection that has arrived
};

}  // namespace quordalvane::bluez
