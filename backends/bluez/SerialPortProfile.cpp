#include "backends/bluez/SerialPortProfile.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

namespace quordalvane::bluez {
namespace {

using namespace std::chrono_literals;
using Options = std::map<std::string, sdbus::Variant>;

constexpr auto ownPath = "/com/quordalvane/serialport";
constexpr auto profileInterface = "org.bluez.Profile1";
constexpr auto rejected = "org.bluez.Error.Rejected";

// The pause between attempts to register the profile while another program has it. The pause is
// short, because that program gives the profile back as soon as its printer is connected.
constexpr auto retryInterval = 50ms;

Method ofManager(const std::string& name) {
  return {serviceName, "/org/bluez", "org.bluez.ProfileManager1", name};
}

bool isHeldByAnother(const sdbus::Error& error) {
  return error.getName() == "org.bluez.Error.NotPermitted" ||
         error.getName() == "org.bluez.Error.AlreadyExists";
}

// Returns a connection over a copy of `file`, because the bus library closes `file` itself.
posix::Descriptor copyOf(const sdbus::UnixFd& file) {
  const int copy = ::fcntl(file.get(), F_DUPFD_CLOEXEC, 0);
  if (copy < 0) {
    throw sdbus::Error(ErrorName(rejected), "the process has no descriptor left");
  }
  posix::Descriptor connection(copy, posix::Descriptor::Kind::Bluetooth);
  ::fcntl(copy, F_SETFL, ::fcntl(copy, F_GETFL) | O_NONBLOCK);
  return connection;
}

}  // namespace

SerialPortProfile::SerialPortProfile(Bus& bus, SteadyTime deadline) : bus_(bus) {
  serve();
  takeRegistration(deadline);
}

SerialPortProfile::~SerialPortProfile() {
  try {
    bus_.call(SteadyClock::now() + 1s, ofManager("UnregisterProfile"), sdbus::ObjectPath(ownPath));
  } catch (const std::exception&) {
    // A failure of this call is ignored. Either the service has ended, or the service removes the
    // profile when this program leaves the bus.
  }
}

posix::Descriptor SerialPortProfile::connect(const KnownDevice& printer, SteadyTime deadline) {
  awaited_ = printer.path;
  callConnect(printer, deadline);
  // The service may give this program the connection before or after it answers the call.
  const bool isThere = bus_.handleUntil(deadline, [this] { return taken_.has_value(); });
  awaited_.clear();
  if (!isThere) {
    fail(BluetoothError::NoAnswer, printer.address);
  }
  posix::Descriptor connection = *std::exchange(taken_, std::nullopt);
  return connection;
}

void SerialPortProfile::serve() {
  object_ = sdbus::createObject(bus_.connection(), sdbus::ObjectPath(ownPath));
  // The service calls `RequestDisconnection` when it disconnects the printer, and `Release` when it
  // stops. Both methods do nothing, because the link ends in any case.
  serveOn(
      *object_, profileInterface,
      {method("NewConnection", [this](const sdbus::ObjectPath& device, const sdbus::UnixFd& file,
                                      const Options& /*properties*/) { take(device, file); }),
       method("RequestDisconnection", [](const sdbus::ObjectPath& /*device*/) {}),
       method("Release", [] {})});
}

void SerialPortProfile::takeRegistration(SteadyTime deadline) {
  const Options options = {{"Name", sdbus::Variant(std::string("receipt printer"))},
                           {"Role", sdbus::Variant(std::string("client"))},
                           {"RequireAuthorization", sdbus::Variant(false)}};
  while (true) {
    try {
      bus_.call(deadline, ofManager("RegisterProfile"), sdbus::ObjectPath(ownPath),
                std::string(serialPort), options);
      return;
    } catch (const sdbus::Error& error) {
      const SteadyTime next = SteadyClock::now() + retryInterval;
      if (!isHeldByAnother(error) || next >= deadline) {
        failAs(error, "the serial port profile");
      }
      bus_.handleUntil(next, [] { return false; });
    }
  }
}

void SerialPortProfile::take(const sdbus::ObjectPath& device, const sdbus::UnixFd& file) {
  if (device != awaited_ || taken_) {
    throw sdbus::Error(ErrorName(rejected), "this program has not asked for this connection");
  }
  taken_.emplace(copyOf(file));
}

void SerialPortProfile::callConnect(const KnownDevice& printer, SteadyTime deadline) {
  const std::string about = printer.address + " (" + printer.name + ")";
  try {
    bus_.call(deadline, {serviceName, printer.path, "org.bluez.Device1", "ConnectProfile"},
              std::string(serialPort));
  } catch (const sdbus::Error& error) {
    taken_.reset();
    if (isSilence(error)) {
      fail(BluetoothError::NotAuthorized, about);
    }
    failAs(error, about);
  }
}

}  // namespace quordalvane::bluez
