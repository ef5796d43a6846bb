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
bluez::Served constant(const char* name, Value value) {
  return bluez::property(name, [value] { return value; });
}

}  // namespace

StandInBluetooth::StandInBluetooth(StandInPlan plan)
    : plan_(std::move(plan)), connection_(sdbus::createSystemBusConnection()) {
  root_ = sdbus::createObject(*connection_, sdbus::ObjectPath("/"));
  root_->addObjectManager();
  addManager();
  if (plan_.isAdapterOn) {
    addAdapter(*plan_.isAdapterOn);
  }
  for (const StandInDevice& device : plan_.devices) {
    addDevice(device);
  }
  departures_ = bluez::addMatch(
      *connection_, "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg2=''",
      [this](sdbus::Message& message) {
        std::string name;
        message >> name;
        unregister(name);
      });
  connection_->requestName(bluez::ServiceName("org.bluez"));
  thread_ = std::thread([this] {
    try {
      connection_->enterEventLoop();
    } catch (const sdbus::Error&) {
      // The bus has ended.
    }
  });
}

StandInBluetooth::~StandInBluetooth() {
  connection_->leaveEventLoop();
  thread_.join();
}

void StandInBluetooth::addAdapter(bool isOn) {
  auto adapter = sdbus::createObject(*connection_, sdbus::ObjectPath(adapterPath));
  bluez::serveOn(*adapter, "org.bluez.Adapter1", {constant("Powered", isOn)});
  objects_.push_back(std::move(adapter));
}

void StandInBluetooth::addDevice(const StandInDevice& device) {
  const std::string path = pathOf(device);
  auto object = sdbus::createObject(*connection_, sdbus::ObjectPath(path));
  bluez::serveOn(*object, "org.bluez.Device1",
                 {constant("Address", device.address), constant("Alias", device.alias),
                  constant("Paired", device.isPaired), constant("Connected", device.isConnected),
                  constant("Class", device.deviceClass), constant("UUIDs", device.services),
                  constant("Adapter", sdbus::ObjectPath(adapterPath)),
                  bluez::method("ConnectProfile", [this, path](sdbus::Result<>&& result,
                                                               const std::string& /*service*/) {
                    connect(std::move(result), path);
                  })});
  objects_.push_back(std::move(object));
}

void StandInBluetooth::addManager() {
  using Options = std::map<std::string, sdbus::Variant>;
  manager_ = sdbus::createObject(*connection_, sdbus::ObjectPath("/org/bluez"));
  bluez::serveOn(
      *manager_, "org.bluez.ProfileManager1",
      {bluez::method("RegisterProfile",
                     [this](const sdbus::ObjectPath& path, const std::string& /*service*/,
                            const Options& /*options*/) { registerProfile(path); }),
       bluez::method("UnregisterProfile", [this](const sdbus::ObjectPath& /*path*/) {
         unregister(bluez::callerOf(*manager_));
       })});
}

void StandInBluetooth::registerProfile(const std::string& path) {
  if (profile_ || toRefuse_ > 0) {
    --toRefuse_;
    throw sdbus::Error(bluez::ErrorName("org.bluez.Error.NotPermitted"), "UUID already registered");
  }
  profile_ = Profile{bluez::callerOf(*manager_), path};
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
  const auto answerAfter = [answer](const bluez::ReplyError& error) {
    error ? answer->returnError(*error) : answer->returnResults();
  };
  switch (plan_.connecting) {
    case Connecting::InOrder:
      return handOver(device, answerAfter);
    case Connecting::AnswersEarly:
      answer->returnResults();
      return handOver(device, [](const bluez::ReplyError&) {});
    case Connecting::OfAnother:
      return handOver("/org/bluez/hci0/dev_another",
                      [this, device, answerAfter](const bluez::ReplyError& error) {
                        turnedDown_ += error ? 1 : 0;
                        handOver(device, answerAfter);
                      });
    case Connecting::Refuses:
      return answer->returnError(sdbus::Error(bluez::ErrorName(plan_.errorName), plan_.errorText));
    case Connecting::Never:
      unanswered_.push_back(answer);
  }
}

void StandInBluetooth::handOver(const std::string& device,
                                std::function<void(const bluez::ReplyError&)> then) {
  const sdbus::UnixFd connection(plan_.connect(), sdbus::adopt_fd);
  owners_.push_back(sdbus::createProxy(*connection_, bluez::ServiceName(profile_->owner),
                                       sdbus::ObjectPath(profile_->path)));
  owners_.back()
      ->callMethodAsync("NewConnection")
      .onInterface("org.bluez.Profile1")
      .withArguments(sdbus::ObjectPath(device), connection, std::map<std::string, sdbus::Variant>{})
      .uponReplyInvoke([then = std::move(then)](bluez::ReplyError error) { then(error); });
}

}  // namespace quordalvane::test
