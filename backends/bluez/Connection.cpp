#include "backends/bluez/Connection.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>
#include <thread>
#include <utility>

#include "backends/bluez/Bus.h"
#include "backends/bluez/SerialPortProfile.h"
#include "backends/bluez/Service.h"

namespace quordalvane::bluez {
namespace {

using posix::Descriptor;

void shutDown(int number) {
  ::shutdown(number, SHUT_RDWR);
}

// Notices when the service leaves the bus.
class ServiceWatch {
 public:
  explicit ServiceWatch(Bus& bus) {
    const std::string rule =
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='" +
        std::string(serviceName) + "'";
    try {
      match_ = addMatch(bus.connection(), rule, [this](sdbus::Message&) { hasLeft_ = true; });
    } catch (const sdbus::Error& error) {
      failAs(error, "");
    }
  }

  bool hasLeft() const { return hasLeft_; }

 private:
  bool hasLeft_ = false;
  sdbus::Slot match_;
};

/// The objects of the thread that watches a connection: the bus over which the connection was made,
/// and the object that notices the end of the service.
struct Care {
  explicit Care(SteadyTime deadline) : bus(deadline), watch(bus) {}

  Bus bus;
  ServiceWatch watch;
};

// Returns a copy of the descriptor, by which another thread can end the connection. The copy does
// not keep the connection open: the owner shuts the connection down before it closes its own
// descriptor.
Descriptor handleOn(Descriptor& connection) {
  connection.setBeforeClose(shutDown);
  const int copy = ::fcntl(connection.number(), F_DUPFD_CLOEXEC, 0);
  if (copy < 0) {
    throw std::system_error(errno, std::generic_category());
  }
  return {copy, Descriptor::Kind::Bluetooth};
}

// The body of the watching thread. The thread owns all objects that it uses. A forked child process
// does not have the thread and does not need it.
void lookAfter(std::unique_ptr<Care> care, Descriptor connection) {
  try {
    care->bus.handleWhileOpen(connection.number(), [&] { return care->watch.hasLeft(); });
  } catch (const std::system_error&) {
    // The bus has ended, so the service cannot be reached any more.
  }
  connection.shutdown();
}

}  // namespace

Descriptor connectBluetooth(const std::string& place, std::chrono::milliseconds timeout) {
  const SteadyTime deadline = SteadyClock::now() + timeout;
  auto care = std::make_unique<Care>(deadline);
  const KnownDevice printer = choosePrinter(askService(care->bus, deadline), place);
  if (!printer.isAdapterOn) {
    fail(BluetoothError::AdapterOff, printer.address);
  }
  Descriptor connection = SerialPortProfile(care->bus, deadline).connect(printer, deadline);
  std::thread(lookAfter, std::move(care), handleOn(connection)).detach();
  return connection;
}

}  // namespace quordalvane::bluez
