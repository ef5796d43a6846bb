#include "backends/bluez/Connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

#include "backends/bluez/BluetoothError.h"
#include "backends/bluez/Bus.h"
#include "tests/bluez/standins/BluetoothService.h"
#include "tests/bluez/standins/PrivateBus.h"
#include "tests/support/Eventually.h"

namespace quordalvane::bluez {
namespace {

using namespace std::chrono_literals;
using test::Connecting;
using test::StandInBluetooth;
using test::StandInDevice;
using test::StandInPlan;

const std::string address = "01:23:45:67:89:AB";

std::error_code code(BluetoothError error) {
  return {static_cast<int>(error), bluetoothCategory()};
}

/// Tries to connect. Returns the error, or an empty error code if the connection was made.
std::error_code outcome(const std::string& place, std::string* text = nullptr,
                        std::chrono::milliseconds timeout = 10s) {
  try {
    connectBluetooth(place, timeout);
  } catch (const std::system_error& error) {
    if (text != nullptr) {
      *text = error.what();
    }
    return error.code();
  }
  return {};
}

std::size_t countOf(const std::string& folder) {
  std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class BluetoothConnection : public testing::Test {
 protected:
  ~BluetoothConnection() override { ::close(printer_); }

  /// Returns a plan for the stand-in service, in which each connection leads to `printer_`.
  StandInPlan plan() {
    StandInPlan plan;
    plan.connect = [this] { return newConnection(); };
    return plan;
  }

  int newConnection() {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    ::close(printer_.exchange(ends[0]));
    return ends[1];
  }

  /// Returns the number of connections to the bus, without the connection that asks.
  static std::size_t programsOnTheBus() {
    const auto deadline = SteadyClock::now() + 10s;
    Bus bus(deadline);
    auto answer = bus.call(deadline, {"org.freedesktop.DBus", "/org/freedesktop/DBus",
                                      "org.freedesktop.DBus", "ListNames"});
    std::vector<std::string> names;
    answer >> names;
    return static_cast<std::size_t>(std::count_if(
               names.begin(), names.end(), [](const auto& name) { return name[0] == ':'; })) -
           1;
  }

  test::PrivateBus bus_;
  std::atomic<int> printer_ = -1;  // the printer's end of the newest connection
};

TEST_F(BluetoothConnection, CarriesBytesInBothDirections) {
  const StandInBluetooth service(plan());
  const posix::Descriptor connection = connectBluetooth(address);
  EXPECT_EQ(connection.send(reinterpret_cast<const std::uint8_t*>("to"), 2), 2);
  char there[2];
  EXPECT_EQ(::read(printer_, there, 2), 2);
  EXPECT_EQ(::write(printer_, "back", 4), 4);
  std::uint8_t here[8];
  EXPECT_EQ(connection.receiveUntil(here, sizeof here, SteadyClock::now() + 10s), 4);
}

TEST_F(BluetoothConnection, FindsThePrinterByNameOrByAddressInAnyLetterCase) {
  const StandInBluetooth service(plan());
  for (const auto* const place : {"", "Kitchen", "01:23:45:67:89:AB", "01:23:45:67:89:ab"}) {
    EXPECT_EQ(outcome(place), std::error_code()) << place;
  }
}

TEST_F(BluetoothConnection, ReleasesTheSerialPortProfileAfterConnecting) {
  const StandInBluetooth service(plan());
  const posix::Descriptor one = connectBluetooth(address);
  EXPECT_EQ(service.profiles(), 0);
  const posix::Descriptor another = connectBluetooth(address);
  EXPECT_EQ(service.profiles(), 0);
}

TEST_F(BluetoothConnection, SucceedsIfTheSocketArrivesBeforeOrAfterTheAnswer) {
  for (const Connecting connecting : {Connecting::InOrder, Connecting::AnswersEarly}) {
    StandInPlan planned = plan();
    planned.connecting = connecting;
    const StandInBluetooth service(planned);
    EXPECT_EQ(outcome(address), std::error_code());
  }
}

TEST_F(BluetoothConnection, RejectsTheConnectionOfAnotherDevice) {
  StandInPlan planned = plan();
  planned.connecting = Connecting::OfAnother;
  const StandInBluetooth service(planned);
  EXPECT_EQ(outcome(address), std::error_code());
  EXPECT_EQ(service.turnedDown(), 1);
}

TEST_F(BluetoothConnection, WaitsWhileAnotherProgramHoldsTheProfileBriefly) {
  StandInPlan planned = plan();
  planned.profilesTaken = 3;
  const StandInBluetooth service(planned);
  EXPECT_EQ(outcome(address), std::error_code());
}

TEST_F(BluetoothConnection, ReportsAProgramThatNeverReleasesTheProfile) {
  StandInPlan planned = plan();
  planned.profilesTaken = 1'000'000;
  const StandInBluetooth service(planned);
  EXPECT_EQ(outcome(address, nullptr, 300ms), code(BluetoothError::ProfileTaken));
}

TEST_F(BluetoothConnection, FailsAtTheTimeoutIfNobodyAuthorisesTheConnection) {
  StandInPlan planned = plan();
  planned.connecting = Connecting::Never;
  const StandInBluetooth service(planned);
  const auto began = SteadyClock::now();
  EXPECT_EQ(outcome(address, nullptr, 300ms), code(BluetoothError::NotAuthorized));
  EXPECT_LT(SteadyClock::now() - began, 5s);
  EXPECT_TRUE(test::eventually([&] { return service.profiles() == 0; }));
}

TEST_F(BluetoothConnection, EndsWhenTheBluetoothServiceEnds) {
  auto service = std::make_unique<StandInBluetooth>(plan());
  const posix::Descriptor connection = connectBluetooth(address);
  service.reset();
  std::uint8_t byte = 0;
  EXPECT_EQ(connection.receiveUntil(&byte, 1, SteadyClock::now() + 10s), 0);
}

TEST_F(BluetoothConnection, EndsWhenTheMessageBusIsKilled) {
  const StandInBluetooth service(plan());
  const posix::Descriptor connection = connectBluetooth(address);
  bus_.kill();
  std::uint8_t byte = 0;
  EXPECT_EQ(connection.receiveUntil(&byte, 1, SteadyClock::now() + 10s), 0);
}

TEST_F(BluetoothConnection, CanBeMadeAgainAfterTheBluetoothServiceRestarts) {
  auto service = std::make_unique<StandInBluetooth>(plan());
  { const posix::Descriptor connection = connectBluetooth(address); }
  service.reset();
  EXPECT_EQ(outcome(address), code(BluetoothError::NoService));
  service = std::make_unique<StandInBluetooth>(plan());
  EXPECT_EQ(outcome(address), std::error_code());
}

TEST_F(BluetoothConnection, LeavesNoDescriptorAndNoThreadAfterAThousandSessions) {
#if defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer has a thread of its own";
#endif
  const StandInBluetooth service(plan());
  { const posix::Descriptor first = connectBluetooth(address); }
  ASSERT_TRUE(test::eventually([] { return countOf("/proc/self/task") == 2; }));
  const std::size_t before = countOf("/proc/self/fd");
  for (int i = 0; i < 1'000; ++i) {
    const posix::Descriptor connection = connectBluetooth(address);
  }
  EXPECT_TRUE(test::eventually([] { return countOf("/proc/self/task") == 2; }));
  EXPECT_TRUE(test::eventually([&] { return countOf("/proc/self/fd") == before; }));
  EXPECT_EQ(programsOnTheBus(), 1U);  // when a program leaves the bus, its match rules are removed
}

TEST_F(BluetoothConnection, WorksInAChildProcessThatWasForkedDuringASession) {
#if defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer allows no new thread in a forked process";
#endif
  const StandInBluetooth service(plan());
  const posix::Descriptor connection = connectBluetooth(address);
  const posix::Descriptor printer(printer_.exchange(-1), posix::Descriptor::Kind::Socket);
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(outcome(address) ? 1 : 0);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(connection.send(reinterpret_cast<const std::uint8_t*>("x"), 1), 1);
}

/// An error of the service, and its meaning.
struct Refusal {
  const char* name;
  const char* text;
  BluetoothError meaning;
};

class BluetoothRefusal : public BluetoothConnection, public testing::WithParamInterface<Refusal> {};

TEST_P(BluetoothRefusal, HasTheErrorCodeAndTheTextOfItsCause) {
  StandInPlan planned = plan();
  planned.connecting = Connecting::Refuses;
  planned.errorName = GetParam().name;
  planned.errorText = GetParam().text;
  const StandInBluetooth service(planned);
  std::string text;
  EXPECT_EQ(outcome(address, &text), code(GetParam().meaning));
  EXPECT_THAT(text, testing::HasSubstr(GetParam().text));
}

constexpr Refusal refusals[] = {
    {"org.bluez.Error.Failed", "Host is down (112)", BluetoothError::HostDown},
    {"org.bluez.Error.Failed", "br-connection-page-timeout", BluetoothError::HostDown},
    {"org.bluez.Error.Failed", "Connection refused (111)", BluetoothError::Rejected},
    {"org.bluez.Error.Failed", "Device or resource busy (16)", BluetoothError::InUse},
    {"org.bluez.Error.Failed", "br-connection-create-socket", BluetoothError::InUse},
    {"org.bluez.Error.AlreadyConnected", "Already Connected", BluetoothError::InUse},
    {"org.bluez.Error.InProgress", "In Progress", BluetoothError::InUse},
    {"org.bluez.Error.Rejected", "Rejected", BluetoothError::Rejected},
    {"org.bluez.Error.NotReady", "Resource Not Ready", BluetoothError::AdapterOff},
    {"org.bluez.Error.DoesNotExist", "Does Not Exist", BluetoothError::NoSerialPort},
    {"org.freedesktop.DBus.Error.AccessDenied", "denied", BluetoothError::Denied},
    {"org.bluez.Error.Failed", "\x1b[2J of another kind", BluetoothError::Failed},
};

INSTANTIATE_TEST_SUITE_P(, BluetoothRefusal, testing::ValuesIn(refusals));

struct Choice {
  const char* name;
  StandInPlan plan;
  BluetoothError reason;
};

TEST_F(BluetoothConnection, ReportsWhyNoPrinterCanBeReached) {
  StandInDevice unpaired;
  unpaired.isPaired = false;
  StandInDevice telephone;
  telephone.services = {"0000110a-0000-1000-8000-00805f9b34fb"};
  StandInDevice twin;
  twin.address = "01:23:45:67:89:AC";
  const Choice choices[] = {
      {.name = "no adapter",
       .plan = {.isAdapterOn = std::nullopt, .devices = {}},
       .reason = BluetoothError::NoAdapter},
      {.name = "adapter off", .plan = {.isAdapterOn = false}, .reason = BluetoothError::AdapterOff},
      {.name = "unknown", .plan = {.devices = {}}, .reason = BluetoothError::NotPaired},
      {.name = "known", .plan = {.devices = {unpaired}}, .reason = BluetoothError::NotPaired},
      {.name = "no serial port",
       .plan = {.devices = {telephone}},
       .reason = BluetoothError::NoSerialPort},
      {.name = "two",
       .plan = {.devices = {StandInDevice{}, twin}},
       .reason = BluetoothError::Ambiguous},
  };
  for (const Choice& choice : choices) {
    const StandInBluetooth service(choice.plan);
    EXPECT_EQ(outcome("Kitchen"), code(choice.reason)) << choice.name;
  }
}

TEST(UnusableMessageBus, IsReportedAtOnceIfItIsMissing) {
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/at/all", 1);
  std::string text;
  EXPECT_EQ(outcome(address, &text), code(BluetoothError::NoBus));
  EXPECT_THAT(text, testing::HasSubstr("the system's message bus cannot be reached"));
}

TEST(UnusableMessageBus, IsReportedAtTheTimeoutIfItDoesNotAnswer) {
  const test::TemporaryFolder folder;
  const int silent = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  folder.file("bus").copy(place.sun_path, sizeof place.sun_path - 1);
  ASSERT_EQ(::bind(silent, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
  ASSERT_EQ(::listen(silent, 8), 0);
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + folder.file("bus")).c_str(), 1);
  const auto began = SteadyClock::now();
  EXPECT_EQ(outcome(address, nullptr, 200ms), code(BluetoothError::NoBus));
  EXPECT_LT(SteadyClock::now() - began, 5s);
  ::close(silent);
}

}  // namespace
}  // namespace quordalvane::bluez
