#include "tests/bluez/standins/BluetoothService.h"

#include <algorithm>
#include <utility>

namespace quordalvane::test {
namespace {

constexpr auto adapterPath = "/org/bluez/hci0";

std::string pathOf(const StandInDevice& device) {
  std::string path = std::string(adapterPath) + "/dev_" + device.address;
  std::replace(path.begin(), path.end(), ':', '_');
  return path;
}

template <typename Value>
void addProperty(sdbus::IObject& object, const char* interface, const char* name, Value value) {
  object.registerProperty(name).onInterface(interface).withGetter([value] { return value; });
}

}  // namespace

StandInBluetooth::StandInBluetooth(StandInPlan plan)
    : plan_(std::move(plan)), connection_(sdbus::createSystemBusConnection()) {
  connection_->addObjectManager("/", sdbus::floating_slot);
  addManager();
  if (plan_.isAdapterOn) {
    addAdapter(*plan_.isAdapterOn);
  }
  for (const StandInDevice& device : plan_.devices) {
    addDevice(device);
  }
  departures_ = connection_->addMatch(
      "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg2=''",
      [this](sdbus::Message& message) {
        std::string name;
        message >> name;
        unregister(name);
      });
  connection_->requestName("org.bluez");
  thread_ = std::thread([this] {
    try {
      connection_->enterEventLoop();
    } catch (const sdbus::Error&) {
      // The bus has gone.
    }
  });
}

StandInBluetooth::~StandInBluetooth() {
  connection_->leaveEventLoop();
  thread_.join();
}

void StandInBluetooth::addAdapter(bool isOn) {
  auto adapter = sdbus::createObject(*connection_, adapterPath);
  addProperty(*adapter, "org.bluez.Adapter1", "Powered", isOn);
  adapter->finishRegistration();
  objects_.push_back(std::move(adapter));
}

void StandInBluetooth::addDevice(const StandInDevice& device) {
  constexpr auto interface = "org.bluez.Device1";
  const std::string path = pathOf(device);
  auto object = sdbus::createObject(*connection_, path);
  addProperty(*object, interface, "Address", device.address);
  addProperty(*object, interface, "Alias", device.alias);
  addProperty(*object, interface, "Paired", device.isPaired);
  addProperty(*object, interface, "Connected", device.isConnected);
  addProperty(*object, interface, "Class", device.deviceClass);
  addProperty(*object, interface, "UUIDs", device.services);
  addProperty(*object, interface, "Adapter", sdbus::ObjectPath(adapterPath));
  object->registerMethod("ConnectProfile")
      .onInterface(interface)
      .implementedAs([this, path](sdbus::Result<>&& result, const std::string& /*service*/) {
        connect(std::move(result), path);
      });
  object->finishRegistration();
  objects_.push_back(std::move(object));
}

void StandInBluetooth::addManager() {
  constexpr auto interface = "org.bluez.ProfileManager1";
  using Options = std::map<std::string, sdbus::Variant>;
  manager_ = sdbus::createObject(*connection_, "/org/bluez");
  manager_->registerMethod("RegisterProfile")
      .onInterface(interface)
      .implementedAs([this](const sdbus::ObjectPath& path, const std::string& /*service*/,
                            const Options& /*options*/) { registerProfile(path); });
  manager_->registerMethod("UnregisterProfile")
      .onInterface(interface)
      .implementedAs([this](const sdbus::ObjectPath& /*path*/) {
        unregister(manager_->getCurrentlyProcessedMessage()->getSender());
      });
  manager_->finishRegistration();
}

void StandInBluetooth::registerProfile(const std::string& path) {
  if (profile_ || toRefuse_ > 0) {
    --toRefuse_;
    throw sdbus::Error("org.bluez.Error.NotPermitted", "UUID already registered");
  }
  profile_ = Profile{manager_->getCurrentlyProcessedMessage()->getSender(), path};
  profileCount_ = 1;
}

void StandInBluetooth::unregister(const std::string& owner) {
  if (profile_ && profile_->owner == owner) {
    profile_.reset();
    profileCount_ = 0;
  }
}

void StandInBluetooth::connect(sdbus::Result<>&& result, const std::string& device) {
  const auto answer = std::make_shared<sdbus::Result<>>(std::move(result));
  const auto answerAfter = [answer](const sdbus::Error* error) {
    error == nullptr ? answer->returnResults() : answer->returnError(*error);
  };
  switch (plan_.connecting) {
    case Connecting::InOrder:
      return handOver(device, answerAfter);
    case Connecting::AnswersEarly:
      answer->returnResults();
      return handOver(device, [](const sdbus::Error*) {});
    case Connecting::OfAnother:
      return handOver("/org/bluez/hci0/dev_another",
                      [this, device, answerAfter](const sdbus::Error* error) {
                        turnedDown_ += error == nullptr ? 0 : 1;
                        handOver(device, answerAfter);
                      });
    case Connecting::Refuses:
      return answer->returnError(sdbus::Error(plan_.errorName, plan_.errorText));
    case Connecting::Never:
      unanswered_.push_back(answer);
  }
}

void StandInBluetooth::handOver(const std::string& device,
                                std::function<void(const sdbus::Error*)> then) {
  const sdbus::UnixFd connection(plan_.connect(), sdbus::adopt_fd);
  owners_.push_back(sdbus::createProxy(*connection_, profile_->owner, profile_->path));
  owners_.back()
      ->callMethodAsync("NewConnection")
      .onInterface("org.bluez.Profile1")
      .withArguments(sdbus::ObjectPath(device), connection, std::map<std::string, sdbus::Variant>{})
      .uponReplyInvoke([then = std::move(then)](const sdbus::Error* error) { then(error); });
}

}  // namespace quordalvane::test
