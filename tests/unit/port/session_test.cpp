#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/Forwarding.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

Scenario closed() {
  Scenario scenario = Scenario::in(lineMode);
  scenario.isOpen = false;
  return scenario;
}

TEST(PortSession, OpensItsInputThenItsOutputAndThenPauses) {
  const Outcome run = closed().run(open());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.all(), text(R"(
    Start open |
    Start open71 |
    Process open71 | specifiedPortName: (null)
    connectedAccessories
    Process open71 | <accessory 41: Shop printer, model XQ300, serial S-17, maker quor dalvane>
    accessory.openSession com.quordalvane.receipt
    input.setDelegate <self>
    input.scheduleInRunLoop kCFRunLoopDefaultMode
    input.open
    output.setDelegate <self>
    output.scheduleInRunLoop kCFRunLoopDefaultMode
    output.open
    End open71 |
    usleep 100000
    End open | -> 1
  )"));
  EXPECT_NE(run.properties.find("result71 1\nname \"Shop printer\"\nserialNumber \"S-17\"\n"
                                "connectionID 41\n"),
            std::string::npos);
}

TEST(PortSession, ClosesItsPartsInOrder) {
  const Outcome run = Scenario::in(lineMode).run(close());
  EXPECT_EQ(run.all(), text(R"(
    Start close |
    systemVersion 9.0
    Start close71 |
    output.close
    output.removeFromRunLoop kCFRunLoopDefaultMode
    output.setDelegate 0x0
    input.close
    input.removeFromRunLoop kCFRunLoopDefaultMode
    input.setDelegate 0x0
    session.release
    End close71 |
    End close |
  )"));
  EXPECT_NE(run.properties.find("result71 1\nname none\nserialNumber none\nconnectionID 0\n"),
            std::string::npos);
}

TEST(PortSession, PausesATenthOfASecondEvenIfTheOpenFails) {
  Scenario scenario = closed();
  scenario.accessories = {};
  const Outcome run = scenario.run(open());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), "usleep 100000\n");
}

TEST(PortSession, MayBeClosedEvenIfItIsNotOpen) {
  const Outcome run = closed().run(inTurn({close(), close()}));
  EXPECT_EQ(run.records("close71"), "2 x {\n  Start |\n  End |\n}\n");
}

TEST(PortSession, IsConnectedOnlyFromOpenToClose) {
  const Outcome run =
      closed().run(inTurn({isConnected(), open(), isConnected(), close(), isConnected()}));
  EXPECT_EQ(run.result, "false; true; true; true; false");
}

TEST(PortSession, IsNotConnectedIfThereIsNoAccessory) {
  const Outcome run = closed().run(isConnected());
  EXPECT_EQ(run.all(), text(R"(
    Start isConnected |
    Error isConnected | _selectedAccessory == nil, 0x0
    End isConnected | -> 0
  )"));
}

TEST(PortSession, HasNoBytesAndNoSpaceAfterTheClose) {
  Scenario scenario = closed();
  scenario.script.delivers(bytes("01"));
  const Outcome run =
      scenario.run(inTurn({open(), close(), write(bytes("41")), read(1), writeWithRetry({})}));
  EXPECT_EQ(run.result, "true; true; 0; none; -1");
}

TEST(PortSession, IsReplacedByASecondOpen) {
  const Outcome run = closed().run(inTurn({open(), open(), isConnected()}));
  EXPECT_EQ(run.result, "true; true; true");
  const std::string calls = run.calls();
  EXPECT_NE(calls.find("session.release"), std::string::npos) << "the old one is not leaked";
}

TEST(PortSession, IsReleasedByASecondOpenThatFindsNoPrinter) {
  ScriptedWorld world;
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 0, ZKEmulationQuorLine, world.platform());
  EXPECT_TRUE(port->open());
  world.machine().detachAll();
  EXPECT_FALSE(port->open());
  EXPECT_FALSE(port->isConnected());
  EXPECT_EQ(port->write({0x41}), 0);
  EXPECT_EQ(port->read(1), std::nullopt);
}

/// Passes every session of the platform to `change` before the port gets it.
class SessionsChanged : public ForwardingPlatform {
 public:
  using Change = std::function<std::shared_ptr<EASession>(std::shared_ptr<EASession>)>;

  SessionsChanged(std::shared_ptr<Platform> next, Change change)
      : ForwardingPlatform(std::move(next)),
        manager_(ForwardingPlatform::sharedAccessoryManager(), std::move(change)) {}
  EAAccessoryManager& sharedAccessoryManager() override { return manager_; }

  static Layer layer(Change change) {
    return [change = std::move(change)](std::shared_ptr<Platform> next) {
      return std::make_shared<SessionsChanged>(std::move(next), change);
    };
  }

 private:
  class Accessory : public ForwardingAccessory {
   public:
    Accessory(std::shared_ptr<EAAccessory> next, Change change)
        : ForwardingAccessory(std::move(next)), change_(std::move(change)) {}
    std::shared_ptr<EASession> openSession(const std::string& protocol) override {
      return change_(ForwardingAccessory::openSession(protocol));
    }

   private:
    const Change change_;
  };

  class Manager : public ForwardingAccessoryManager {
   public:
    Manager(EAAccessoryManager& next, Change change)
        : ForwardingAccessoryManager(next), change_(std::move(change)) {}
    std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
      auto accessories = ForwardingAccessoryManager::connectedAccessories();
      for (auto& accessory : accessories) {
        accessory = std::make_shared<Accessory>(std::move(accessory), change_);
      }
      return accessories;
    }

   private:
    const Change change_;
  };

  Manager manager_;
};

std::shared_ptr<EASession> refused(const std::shared_ptr<EASession>&) {
  return nullptr;
}

TEST(PortSession, MakesTheOpenFailIfTheAccessoryRefusesTheSession) {
  Scenario scenario = closed();
  scenario.layer = SessionsChanged::layer(&refused);
  const Outcome run = scenario.run(inTurn({open(), isConnected()}));
  EXPECT_EQ(run.result, "false; true") << "the accessory is there, and no session";
  EXPECT_TRUE(run.records("open71").ends_with("Error | _session == nil, (null)\nEnd |\n"));
  EXPECT_NE(run.properties.find("result71 0\n"), std::string::npos);
}

TEST(PortSession, AStatusRequestWaitsAndFailsIfTheSessionWasRefused) {
  for (const std::int32_t emulation : {lineMode, escPos}) {
    Scenario scenario = Scenario::in(emulation, 1000);
    scenario.layer = SessionsChanged::layer(&refused);
    scenario.isOpen = false;
    const Outcome run = scenario.run(inTurn({open(), getParsedStatus()}));
    EXPECT_TRUE(run.result.starts_with("false; ") && !run.result.ends_with("true")) << run.result;
  }
}

TEST(PortSession, LetsReadsAndWritesFailIfTheSessionWasRefused) {
  Scenario scenario = closed();
  scenario.layer = SessionsChanged::layer(&refused);
  const Outcome run = scenario.run(inTurn({open(), write(bytes("41")), read(5)}));
  EXPECT_EQ(run.result, "false; 0; <>");
}

class CountingSession : public ForwardingSession {
 public:
  CountingSession(std::shared_ptr<EASession> next, int& abandoned)
      : ForwardingSession(std::move(next)), abandoned_(abandoned) {}
  void abandon() override { ++abandoned_; }

 private:
  int& abandoned_;
};

TEST(PortSession, IsAbandonedOnlyWhileThePortIsOpen) {
  int abandoned = 0;
  ScriptedWorld world({}, {shopPrinter()},
                      SessionsChanged::layer([&abandoned](std::shared_ptr<EASession> next) {
                        return std::make_shared<CountingSession>(std::move(next), abandoned);
                      }));
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 0, ZKEmulationQuorLine, world.platform());
  port->abandonOutput();
  EXPECT_EQ(abandoned, 0);
  EXPECT_TRUE(port->open());
  port->abandonOutput();
  EXPECT_EQ(abandoned, 1);
  port->close();
  port->abandonOutput();
  EXPECT_EQ(abandoned, 1);
}

/// An exception that a platform may throw, but that is not derived from std::exception.
struct Surprise {};

enum class Raise { Standard, Port, Other };

[[noreturn]] void raise(Raise kind) {
  switch (kind) {
    case Raise::Standard:
      throw std::runtime_error("the radio is off");
    case Raise::Port:
      throw PortException("the port is tired");
    default:
      throw Surprise();
  }
}

class RaisingInput : public ForwardingInputStream {
 public:
  RaisingInput(std::shared_ptr<NSInputStream> next, Raise kind)
      : ForwardingInputStream(std::move(next)), kind_(kind) {}
  void open() override { raise(kind_); }

 private:
  const Raise kind_;
};

class RaisingOutput : public ForwardingOutputStream {
 public:
  RaisingOutput(std::shared_ptr<NSOutputStream> next, Raise kind)
      : ForwardingOutputStream(std::move(next)), kind_(kind) {}
  void close() override { raise(kind_); }

 private:
  const Raise kind_;
};

class RaisingSession : public ForwardingSession {
 public:
  RaisingSession(const std::shared_ptr<EASession>& next, bool atOpen, Raise kind)
      : ForwardingSession(next),
        input_(atOpen ? std::make_shared<RaisingInput>(next->inputStream(), kind)
                      : next->inputStream()),
        output_(atOpen ? next->outputStream()
                       : std::make_shared<RaisingOutput>(next->outputStream(), kind)) {}
  std::shared_ptr<NSInputStream> inputStream() override { return input_; }
  std::shared_ptr<NSOutputStream> outputStream() override { return output_; }

 private:
  const std::shared_ptr<NSInputStream> input_;
  const std::shared_ptr<NSOutputStream> output_;
};

Layer raising(bool atOpen, Raise kind) {
  return SessionsChanged::layer([=](const std::shared_ptr<EASession>& next) {
    return std::make_shared<RaisingSession>(next, atOpen, kind);
  });
}

struct Raised {
  Raise kind;
  const char* record;
};

class SessionThatThrows : public testing::TestWithParam<Raised> {};

TEST_P(SessionThatThrows, MakesTheOpenFailAndIsLogged) {
  Scenario scenario = closed();
  scenario.layer = raising(true, GetParam().kind);
  const Outcome run = scenario.runOnPort(open());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(
      run.records("open71").ends_with(std::string("Error | ") + GetParam().record + "\nEnd |\n"))
      << run.records("open71");
  EXPECT_NE(run.properties.find("result71 0\n"), std::string::npos);
}

TEST_P(SessionThatThrows, CanStillBeClosed) {
  Scenario scenario = closed();
  scenario.layer = raising(false, GetParam().kind);
  const Outcome run = scenario.runOnPort(
      inTurn({open(), close(), isConnected(), write(bytes("41")), open(), isConnected()}));
  EXPECT_EQ(run.result, "true; true; false; 0; true; true");
  EXPECT_NE(run.records("close71").find(std::string("Start |\nError | ") + GetParam().record +
                                        "\nEnd |\n"),
            std::string::npos)
      << run.records("close71");
}

INSTANTIATE_TEST_SUITE_P(
    Kind, SessionThatThrows,
    testing::Values(Raised{Raise::Standard, "the radio is off"},
                    Raised{Raise::Port, "the port is tired"},
                    Raised{Raise::Other,
                           "Throws exception, class: quordalvane::test::(anonymous "
                           "namespace)::Surprise"}));

TEST(PortSession, ClearsItsPropertiesEvenIfClosingThrows) {
  Scenario scenario = closed();
  scenario.layer = raising(false, Raise::Other);
  const Outcome run = scenario.runOnPort(inTurn({open(), close()}));
  EXPECT_NE(run.properties.find("name none\nserialNumber none\nconnectionID 0\n"),
            std::string::npos)
      << run.properties;
}

}  // namespace
}  // namespace quordalvane::test
