#include "backends/bluez/Service.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>

namespace quordalvane::bluez {
namespace {

using Properties = std::map<std::string, sdbus::Variant>;
using Interfaces = std::map<std::string, Properties>;
using Objects = std::map<sdbus::ObjectPath, Interfaces>;

// Returns the value of the property `name`. Returns `otherwise` if the property is missing or has
// another type.
template <typename Value>
Value valueOf(const Properties& properties, const std::string& name, Value otherwise) {
  const auto found = properties.find(name);
  if (found == properties.end()) {
    return otherwise;
  }
  try {
    return found->second.get<Value>();
  } catch (const sdbus::Error&) {
    return otherwise;
  }
}

const Properties* propertiesOf(const Interfaces& interfaces, const std::string& name) {
  const auto found = interfaces.find(name);
  return found == interfaces.end() ? nullptr : &found->second;
}

char inUpperCase(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool areSameInAnyCase(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char a, char b) { return inUpperCase(a) == inUpperCase(b); });
}

// Returns whether a device with this class may be a printer. Printers are imaging devices with the
// bit for printers. Many receipt printers report no class, so a device without a class may also be
// a printer.
bool mayBePrinterByClass(std::uint32_t deviceClass) {
  constexpr std::uint32_t imaging = 0x06;
  constexpr std::uint32_t printer = 0x80;
  constexpr std::uint32_t miscellaneous = 0x00;
  constexpr std::uint32_t uncategorised = 0x1f;
  const std::uint32_t major = (deviceClass >> 8U) & 0x1fU;
  return major == miscellaneous || major == uncategorised ||
         (major == imaging && (deviceClass & printer) != 0);
}

KnownDevice deviceOf(const std::string& path, const Properties& properties,
                     const Objects& objects) {
  KnownDevice device;
  device.path = path;
  device.address = valueOf<std::string>(properties, "Address", "");
  std::transform(device.address.begin(), device.address.end(), device.address.begin(), inUpperCase);
  device.name = valueOf(properties, "Alias", valueOf<std::string>(properties, "Name", ""));
  device.isPaired = valueOf(properties, "Paired", false);
  device.isConnected = valueOf(properties, "Connected", false);
  device.mayBePrinter = mayBePrinterByClass(valueOf<std::uint32_t>(properties, "Class", 0));
  const auto services = valueOf<std::vector<std::string>>(properties, "UUIDs", {});
  device.hasSerialPort =
      std::any_of(services.begin(), services.end(),
                  [](const std::string& service) { return areSameInAnyCase(service, serialPort); });
  const auto adapter = objects.find(valueOf<sdbus::ObjectPath>(properties, "Adapter", {}));
  if (adapter != objects.end()) {
    const auto* const ofAdapter = propertiesOf(adapter->second, "org.bluez.Adapter1");
    device.isAdapterOn = ofAdapter != nullptr && valueOf(*ofAdapter, "Powered", false);
  }
  return device;
}

Knowledge knowledgeOf(const Objects& objects) {
  Knowledge knowledge;
  for (const auto& [path, interfaces] : objects) {
    knowledge.hasAdapter = knowledge.hasAdapter || interfaces.contains("org.bluez.Adapter1");
    if (const auto* const device = propertiesOf(interfaces, "org.bluez.Device1")) {
      knowledge.devices.push_back(deviceOf(path, *device, objects));
    }
  }
  std::stable_sort(knowledge.devices.begin(), knowledge.devices.end(),
                   [](const auto& one, const auto& other) { return one.address < other.address; });
  return knowledge;
}

std::string listed(const std::vector<KnownDevice>& devices) {
  std::string text;
  for (const KnownDevice& device : devices) {
    text += (text.empty() ? "" : ", ") + device.address + " (" + device.name + ")";
  }
  return text;
}

bool fits(const KnownDevice& device, std::string_view place) {
  return areSameInAnyCase(device.address, place) || device.name == place;
}

std::vector<KnownDevice> fittingDevices(const Knowledge& knowledge, std::string_view place) {
  if (place.empty()) {
    return pairedPrinters(knowledge);
  }
  std::vector<KnownDevice> fitting;
  std::copy_if(knowledge.devices.begin(), knowledge.devices.end(), std::back_inserter(fitting),
               [place](const KnownDevice& device) { return fits(device, place); });
  // A device that is in range but not paired must not hide a paired device of the same name.
  if (std::any_of(fitting.begin(), fitting.end(), [](const auto& one) { return one.isPaired; })) {
    std::erase_if(fitting, [](const auto& one) { return !one.isPaired; });
  }
  return fitting;
}

[[noreturn]] void failNotPaired(const Knowledge& knowledge, std::string_view place) {
  const std::string what = place.empty() ? "no printer" : "bluetooth:" + std::string(place);
  const auto printers = pairedPrinters(knowledge);
  fail(BluetoothError::NotPaired, what + (printers.empty() ? "" : "; paired: " + listed(printers)));
}

// The meaning of an error of the bus or of the service. `name` is the beginning of the error's
// name, or a part of its text.
struct Meaning {
  std::string_view name;
  BluetoothError error;
};

constexpr std::array meanings = {
    Meaning{"org.freedesktop.DBus.Error.ServiceUnknown", BluetoothError::NoService},
    Meaning{"org.freedesktop.DBus.Error.NameHasNoOwner", BluetoothError::NoService},
    Meaning{"org.freedesktop.DBus.Error.Spawn.", BluetoothError::NoService},
    Meaning{"org.freedesktop.systemd1.", BluetoothError::NoService},
    Meaning{"org.freedesktop.DBus.Error.UnknownMethod", BluetoothError::NoService},
    Meaning{"org.freedesktop.DBus.Error.UnknownObject", BluetoothError::NotPaired},
    Meaning{"org.freedesktop.DBus.Error.AccessDenied", BluetoothError::Denied},
    Meaning{"org.freedesktop.DBus.Error.Disconnected", BluetoothError::NoBus},
    Meaning{"org.bluez.Error.NotReady", BluetoothError::AdapterOff},
    Meaning{"org.bluez.Error.AlreadyConnected", BluetoothError::InUse},
    Meaning{"org.bluez.Error.InProgress", BluetoothError::InUse},
    Meaning{"org.bluez.Error.NotPermitted", BluetoothError::ProfileTaken},
    Meaning{"org.bluez.Error.AlreadyExists", BluetoothError::ProfileTaken},
    Meaning{"org.bluez.Error.NotAvailable", BluetoothError::NoSerialPort},
    Meaning{"org.bluez.Error.DoesNotExist", BluetoothError::NoSerialPort},
    Meaning{"org.bluez.Error.Rejected", BluetoothError::Rejected},
    Meaning{"org.bluez.Error.NotAuthorized", BluetoothError::Rejected},
    Meaning{"org.bluez.Error.AuthenticationFailed", BluetoothError::Rejected},
    Meaning{"org.bluez.Error.AuthenticationRejected", BluetoothError::Rejected},
    Meaning{"org.bluez.Error.AuthenticationTimeout", BluetoothError::NotAuthorized},
};

// The service uses the same error name for most failures of a connection. Only the error's text
// distinguishes these failures: it contains the system's own message or, in later versions of the
// service, a keyword of the service.
constexpr std::array words = {
    Meaning{"Host is down", BluetoothError::HostDown},
    Meaning{"No route to host", BluetoothError::HostDown},
    Meaning{"timed out", BluetoothError::HostDown},
    Meaning{"page-timeout", BluetoothError::HostDown},
    Meaning{"connection-timeout", BluetoothError::HostDown},
    Meaning{"resource busy", BluetoothError::InUse},
    Meaning{"connection-busy", BluetoothError::InUse},
    // The system refuses a second connection to the same channel.
    Meaning{"create-socket", BluetoothError::InUse},
    Meaning{"already-connected", BluetoothError::InUse},
    Meaning{"refused", BluetoothError::Rejected},
    Meaning{"Permission denied", BluetoothError::Rejected},
    Meaning{"aborted-by-remote", BluetoothError::Rejected},
    Meaning{"reset by peer", BluetoothError::Rejected},
    Meaning{"adapter-not-powered", BluetoothError::AdapterOff},
    Meaning{"Network is down", BluetoothError::AdapterOff},
    Meaning{"profile-unavailable", BluetoothError::NoSerialPort},
};

BluetoothError meaningOf(const sdbus::Error& error) {
  if (isSilence(error)) {
    return BluetoothError::NoAnswer;
  }
  for (const Meaning& meaning : meanings) {
    if (error.getName().starts_with(meaning.name)) {
      return meaning.error;
    }
  }
  for (const Meaning& meaning : words) {
    if (error.getMessage().find(meaning.name) != std::string::npos) {
      return meaning.error;
    }
  }
  return BluetoothError::Failed;
}

}  // namespace

Knowledge askService(Bus& bus, SteadyTime deadline) {
  try {
    auto answer = bus.call(
        deadline, {serviceName, "/", "org.freedesktop.DBus.ObjectManager", "GetManagedObjects"});
    Objects objects;
    answer >> objects;
    return knowledgeOf(objects);
  } catch (const sdbus::Error& error) {
    failAs(error, "");
  }
}

std::vector<KnownDevice> pairedPrinters(const Knowledge& knowledge) {
  std::vector<KnownDevice> printers;
  std::copy_if(knowledge.devices.begin(), knowledge.devices.end(), std::back_inserter(printers),
               [](const KnownDevice& device) {
                 return device.isPaired && device.hasSerialPort && device.mayBePrinter;
               });
  return printers;
}

KnownDevice choosePrinter(const Knowledge& knowledge, std::string_view place) {
  if (!knowledge.hasAdapter) {
    fail(BluetoothError::NoAdapter, "bluetooth:" + std::string(place));
  }
  const auto fitting = fittingDevices(knowledge, place);
  if (fitting.empty() || !fitting.front().isPaired) {
    failNotPaired(knowledge, place);
  }
  if (fitting.size() > 1) {
    fail(BluetoothError::Ambiguous, "name one of " + listed(fitting));
  }
  const KnownDevice& printer = fitting.front();
  if (!printer.hasSerialPort) {
    fail(BluetoothError::NoSerialPort, printer.address + " (" + printer.name + ")");
  }
  return printer;
}

void failAs(const sdbus::Error& error, const std::string& about) {
  const std::string gap = about.empty() ? "" : ": ";
  fail(meaningOf(error), about + gap + error.getMessage());
}

}  // namespace quordalvane::bluez
