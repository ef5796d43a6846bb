#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "backends/bluez/BusLibrary.h"

namespace quordalvane::test {

/// A device as the stand-in presents it.
struct StandInDevice {
  std::string address = "01:23:45:67:89:AB";
  std::string alias = "Kitchen";
  bool isPaired = true;
  bool isConnected = false;
  std::uint32_t deviceClass = 0x040680;  // a printer
  std::vector<std::string> services = {"00001101-0000-1000-8000-00805F9B34FB"};
};

/// How the stand-in reacts when a program asks for a connection.
enum class Connecting {
  InOrder,       ///< hands over the connection, and answers after the program has taken it
  AnswersEarly,  ///< answers before it hands over the connection
  OfAnother,     ///< first hands over a connection of another device, then the right one
  Refuses,       ///< answers with an error
  Never,         ///< does not answer
};

struct StandInPlan {
  std::optional<bool> isAdapterOn = true;  ///< null: there is no adapter
  std::vector<StandInDevice> devices = {StandInDevice{}};
  Connecting connecting = Connecting::InOrder;
  std::string errorName = "org.bluez.Error.Failed";
  std::string errorText = "Host is down (112)";
  int profilesTaken = 0;  ///< how many registrations are refused before one is accepted

  /// Makes a connection, and returns the end that the stand-in hands to the program.
  std::function<int()> connect = nullptr;
};

/// A stand-in on the system's bus for the part of the Bluetooth service that printers need:
/// adapters, devices and profiles. A separate thread serves it until it is destroyed.
class StandInBluetooth {
 public:
  explicit StandInBluetooth(StandInPlan plan);
  ~StandInBluetooth();
  StandInBluetooth(const StandInBluetooth&) = delete;
  StandInBluetooth& operator=(const StandInBluetooth&) = delete;

  /// The number of programs that have registered the profile.
  int profiles() const { return static_cast<int>(profileCount_); }

  /// How many connections of other devices were rejected.
  int turnedDown() const { return turnedDown_; }

 private:
  struct Profile {
    std::string owner;
    std::string path;
  };

  void addAdapter(bool isOn);
  void addDevice(const StandInDevice& device);
  void addManager();
  void registerProfile(const std::string& path);
  void unregister(const std::string& owner);
  void connect(sdbus::Result<>&& result, const std::string& device);
  void handOver(const std::string& device, std::function<void(const bluez::ReplyError&)> then);

  const StandInPlan plan_;
  std::unique_ptr<sdbus::IConnection> connection_;
  std::unique_ptr<sdbus::IObject> root_;
  std::vector<std::unique_ptr<sdbus::IObject>> objects_;
  std::unique_ptr<sdbus::IObject> manager_;
  std::vector<std::unique_ptr<sdbus::IProxy>> owners_;
  std::vector<std::shared_ptr<sdbus::Result<>>> unanswered_;
  sdbus::Slot departures_;
  std::optional<Profile> profile_;
  std::atomic<int> profileCount_ = 0;
  std::atomic<int> turnedDown_ = 0;
  int toRefuse_ = plan_.profilesTaken;
  std::thread thread_;
};

}  // namespace quordalvane::test
