#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "platform/Forwarding.h"
#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

/// A world whose making thread is the main thread, and a port made on it.
class PortThread : public testing::Test {
 protected:
  using Port = std::shared_ptr<ExternalAccessoryPort>;

  explicit PortThread(const Layer& layer = {}) : world_({}, {shopPrinter()}, layer) {
    world_.machine().setMainThread(true);
  }

  Port create() {
    auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 5000, ZKEmulationQuorLine,
                                                        world_.platform());
    world_.trace().name(port.get(), "<self>");
    return port;
  }

  /// The events while logging was on, without the slices.
  template <typename Body>
  std::string during(Body body) {
    const Logging logging(true);
    world_.trace().clear();
    body();
    std::string all;
    for (const Line& line : world_.trace().lines()) {
      all += line.text == "port thread: slice 0.1" ? "" : line.text + "\n";
    }
    return all;
  }

  /// Runs `body` on a thread that is not the main thread, in the same virtual time.
  void elsewhere(const std::function<void()>& body) {
    const auto thread = world_.machine().makeThread(body);
    ASSERT_TRUE(thread->start());
    pass(10);
  }

  void pass(double seconds) {
    world_.machine().clock().usleep(static_cast<std::uint64_t>(seconds * 1e6));
  }

  double now() {
    return std::chrono::duration<double>(world_.machine().clock().monotonic()).count();
  }

  /// Whether `holders` hold the port. The port thread releases it after its last pass in virtual
  /// time, so that may still be under way on the machine.
  static bool isHeldBy(const std::weak_ptr<ExternalAccessoryPort>& port, long holders) {
    return eventually([&] { return port.use_count() == holders; });
  }

  ScriptedWorld world_;
};

TEST_F(PortThread, RunsTheOpenThatTheMainThreadCalls) {
  const Port port = create();
  pass(0.05);
  EXPECT_EQ(during([&] { EXPECT_TRUE(port->open()); }), text(R"(
    Start open |
    Process open | NSThread.isMainThread, 1
    thread.performAndWait
    port thread: Start open71 |
    port thread: Process open71 | specifiedPortName: (null)
    port thread: connectedAccessories
    port thread: Process open71 | <accessory 41: Shop printer, model XQ300, serial S-17, maker quor dalvane>
    port thread: accessory.openSession com.quordalvane.receipt
    port thread: input.setDelegate <self>
    port thread: input.scheduleInRunLoop kCFRunLoopDefaultMode
    port thread: input.open
    port thread: output.setDelegate <self>
    port thread: output.scheduleInRunLoop kCFRunLoopDefaultMode
    port thread: output.open
    port thread: End open71 |
    thread.performAndWait -> 1
    usleep 100000
    End open | -> 1
  )"));
  port->close();
}

TEST_F(PortThread, RunsTheCloseThatTheMainThreadCallsAndEnds) {
  const Port port = create();
  EXPECT_TRUE(port->open());
  const std::string all = during([&] {
    port->close();
    pass(0.2);
  });
  EXPECT_EQ(all, text(R"(
    Start close |
    systemVersion 9.0
    Process close | NSThread.isMainThread, 1
    thread.performAndWait
    port thread: Start close71 |
    port thread: output.close
    port thread: output.removeFromRunLoop kCFRunLoopDefaultMode
    port thread: output.setDelegate 0x0
    port thread: input.close
    port thread: input.removeFromRunLoop kCFRunLoopDefaultMode
    port thread: input.setDelegate 0x0
    port thread: session.release
    port thread: End close71 |
    thread.performAndWait -> 1
    thread.cancel
    End close |
    port thread: End runLoop71 |
  )"));
}

TEST_F(PortThread, TurnsItsLoopInSlicesWithOneTraceEach) {
  const Port port = [&] {
    const Logging logging(true, {1});
    auto created = create();
    pass(0.35);
    return created;
  }();
  EXPECT_EQ(view(world_.trace().lines(), {About::Log}), text(R"(
    4 x port thread: Process(1) runLoop71 | [NSRunLoop.currentRunLoop runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
  )"));
  port->close();
}

TEST_F(PortThread, LogsItsBeginAndItsEndOnce) {
  const std::string all = during([&] {
    const Port port = create();
    pass(0.3);
    port->close();
    pass(0.3);
  });
  const std::string begin = "port thread: Start runLoop71 |\n";
  const std::string end = "port thread: End runLoop71 |\n";
  EXPECT_NE(all.find(begin), std::string::npos) << all;
  EXPECT_EQ(all.find(begin), all.rfind(begin));
  EXPECT_NE(all.find(end), std::string::npos);
  EXPECT_EQ(all.find(end), all.rfind(end));
}

TEST_F(PortThread, KeepsThePortAliveUntilACloseOnTheMainThread) {
  Port port = create();
  const std::weak_ptr<ExternalAccessoryPort> weak = port;
  port.reset();
  pass(5);
  EXPECT_FALSE(weak.expired());
  weak.lock()->close();
  pass(0.3);
  EXPECT_TRUE(isHeldBy(weak, 0));
}

TEST_F(PortThread, LetsThePortExpireWithinThreeTenthsOfASecondAfterTheClose) {
  for (const bool open : {false, true}) {
    Port port = create();
    if (open) {
      port->open();
    }
    const std::weak_ptr<ExternalAccessoryPort> weak = port;
    port->close();
    port.reset();
    pass(0.3);
    EXPECT_TRUE(isHeldBy(weak, 0)) << "the last reference was the port thread's";
  }
}

TEST_F(PortThread, EndsAlsoWhenAnApplicationHoldsItsHandle) {
  Port port = create();
  const std::shared_ptr<NSThread> handle = port->thread71();
  const std::weak_ptr<ExternalAccessoryPort> weak = port;
  port->close();
  port.reset();
  pass(0.3);
  EXPECT_TRUE(isHeldBy(weak, 0)) << "there is no cycle through the handle";
}

TEST_F(PortThread, RunsOnAfterACloseOnAnotherThread) {
  const Port port = create();
  const std::weak_ptr<ExternalAccessoryPort> weak = port;
  port->open();
  elsewhere([&port] { port->close(); });
  EXPECT_FALSE(port->isConnected());
  EXPECT_EQ(during([&] { port->close(); }).find("thread.performAndWait -> 0"), std::string::npos)
      << "the thread still takes the later close of the main thread";
  pass(0.3);
  EXPECT_TRUE(isHeldBy(weak, 1));
}

TEST_F(PortThread, ClosesOnTheMainThreadAPortThatWasOpenedOnAnother) {
  const Port port = create();
  elsewhere([&port] { EXPECT_TRUE(port->open()); });
  EXPECT_TRUE(port->isConnected());
  port->close();
  EXPECT_FALSE(port->isConnected());
}

TEST_F(PortThread, IsNotNeededForOpeningElsewhere) {
  const Port port = create();
  const std::string all = during([&] { elsewhere([&port] { EXPECT_TRUE(port->open()); }); });
  EXPECT_EQ(all.find("performAndWait"), std::string::npos);
  EXPECT_EQ(all.find("isMainThread"), std::string::npos);
  port->close();
}

TEST_F(PortThread, ThatWasNeverMadeDoesNotHinderOpenAndCloseOnTheMainThread) {
  world_.machine().setMainThread(false);
  const Port port = create();
  EXPECT_EQ(port->thread71(), nullptr);
  world_.machine().setMainThread(true);
  EXPECT_TRUE(port->open());
  EXPECT_TRUE(port->isConnected());
  port->close();
  EXPECT_FALSE(port->isConnected());
}

TEST_F(PortThread, ThatHasEndedDoesNotHinderOpenAndCloseOnTheMainThread) {
  const Port port = create();
  port->close();
  pass(1);
  EXPECT_TRUE(port->open());
  EXPECT_TRUE(port->isConnected());
  port->close();
  EXPECT_FALSE(port->isConnected());
}

TEST_F(PortThread, ThatIsEndingDoesNotHinderOpenAndCloseOnTheMainThread) {
  for (const double after : {0.0, 0.01, 0.05, 0.09, 0.1, 0.11, 0.2}) {
    const Port port = create();
    pass(0.03);
    port->close();
    pass(after);
    EXPECT_TRUE(port->open()) << after;
    EXPECT_TRUE(port->isConnected());
    port->close();
    EXPECT_FALSE(port->isConnected());
    pass(1);
    EXPECT_TRUE(isHeldBy(port, 1));
  }
}

TEST_F(PortThread, ThatIsEndingIsGivenNothingMore) {
  for (const double after : {0.0, 0.01, 0.05, 0.09, 0.1, 0.11, 0.2}) {
    const Port port = create();
    pass(0.03);
    port->close();
    pass(after);
    const std::string all = during([&] {
      EXPECT_TRUE(port->open());
      port->close();
    });
    EXPECT_NE(all.find("\ninput.scheduleInRunLoop kCFRunLoopDefaultMode\n"), std::string::npos)
        << after << "\n"
        << all;
    EXPECT_NE(all.find("\ninput.removeFromRunLoop kCFRunLoopDefaultMode\n"), std::string::npos);
    EXPECT_EQ(all.find("thread.performAndWait"), std::string::npos);
    pass(1);
  }
}

TEST_F(PortThread, TakesManyCyclesOfOpenAndClose) {
  for (int cycle = 0; cycle < 100; ++cycle) {
    Port port = create();
    const std::weak_ptr<ExternalAccessoryPort> weak = port;
    EXPECT_TRUE(port->open());
    port->close();
    port.reset();
    pass(0.3);
    ASSERT_TRUE(isHeldBy(weak, 0)) << cycle;
  }
}

TEST_F(PortThread, TakesATenthOfASecondForAnOpenThatFails) {
  world_.machine().detachAll();
  const Port port = create();
  const double before = now();
  EXPECT_FALSE(port->open());
  EXPECT_GE(now() - before, 0.1);
  port->close();
}

TEST_F(PortThread, IsNotAskedForTheResultOfAnEarlierOpen) {
  const Port port = create();
  EXPECT_TRUE(port->open());
  world_.machine().detachAll();
  EXPECT_FALSE(port->open());
  EXPECT_EQ(port->result71(), false);
  port->close();
  EXPECT_EQ(port->result71(), false) << "a close does not touch it";
}

struct Version {
  const char* text;
  bool pauses;
  const char* shown;
};

class SystemVersion : public PortThread, public testing::WithParamInterface<Version> {};

TEST_P(SystemVersion, DecidesWhetherACloseWaits) {
  world_.machine().setMainThread(false);
  world_.machine().setSystemVersion(GetParam().text);
  const Port port = create();
  const double before = now();
  const std::string all = during([&] { port->close(); });
  EXPECT_DOUBLE_EQ(now() - before, GetParam().pauses ? 0.1 : 0.0);
  const std::string record =
      std::string("Process close | UIDevice.currentDevice.systemVersion.floatValue >= 10.0, ") +
      GetParam().shown + "\nusleep 100000\n";
  EXPECT_EQ(all.find(record) != std::string::npos, GetParam().pauses) << all;
}

INSTANTIATE_TEST_SUITE_P(
    Text, SystemVersion,
    testing::Values(Version{"9.3.5", false, ""}, Version{"10", true, "10.000000"},
                    Version{"10.0.1", true, "10.000000"}, Version{"10.3.4", true, "10.300000"},
                    Version{"", false, ""}, Version{"nan", false, ""}, Version{"NaN", false, ""},
                    Version{"9.999", false, ""}, Version{"x10", false, ""},
                    Version{"6.1.0-rc1", false, ""}, Version{"12,5", true, "12.000000"},
                    Version{"100", true, "100.000000"}, Version{"-10", false, ""},
                    Version{" 10.0", true, "10.000000"}, Version{"\t\n9.9", false, ""},
                    Version{"+10", true, "10.000000"}, Version{"+-10", false, ""},
                    Version{"1e2", true, "100.000000"}, Version{"1e", false, ""},
                    Version{"100e-2", false, ""}, Version{".5e2", true, "50.000000"},
                    Version{"9999999999999999999999999999999999999999", true, "inf"},
                    Version{"1e99", true, "inf"}, Version{"1e-99", false, ""},
                    Version{"1.0e39", true, "inf"}, Version{"1.0e+39.5", true, "inf"},
                    Version{"0.1e40 beta", true, "inf"}, Version{"0.001e-44", false, ""},
                    Version{"1e99999999999999999999", true, "inf"},
                    Version{"1e-99999999999999999999", false, ""}, Version{"inf", false, ""},
                    Version{"infinity", false, ""}, Version{"0x10", false, ""},
                    Version{" ", false, ""}, Version{".", false, ""}));

class Surprise {};

/// A platform whose list of accessories cannot be had.
class ListRaises : public ForwardingPlatform {
 public:
  explicit ListRaises(std::shared_ptr<Platform> next)
      : ForwardingPlatform(std::move(next)),
        manager_(ForwardingPlatform::sharedAccessoryManager()) {}
  EAAccessoryManager& sharedAccessoryManager() override { return manager_; }

 private:
  class Manager : public ForwardingAccessoryManager {
   public:
    using ForwardingAccessoryManager::ForwardingAccessoryManager;
    std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override { throw Surprise(); }
  };

  Manager manager_;
};

class PortThreadWithoutList : public PortThread {
 protected:
  PortThreadWithoutList()
      : PortThread([](std::shared_ptr<Platform> next) -> std::shared_ptr<Platform> {
          return std::make_shared<ListRaises>(std::move(next));
        }) {}
};

TEST_F(PortThreadWithoutList, TurnsAnExceptionIntoAFailedOpen) {
  const Port port = create();
  const std::string all = during([&] { EXPECT_FALSE(port->open()); });
  EXPECT_NE(all.find("port thread: Error open71 | Throws exception, class: "
                     "quordalvane::test::(anonymous namespace)::Surprise\n"
                     "port thread: End open71 |\n"),
            std::string::npos)
      << all;
  port->close();
}

/// A platform whose clock throws instead of sleeping.
class SleepRaises : public ForwardingPlatform {
 public:
  explicit SleepRaises(std::shared_ptr<Platform> next)
      : ForwardingPlatform(std::move(next)), clock_(ForwardingPlatform::clock()) {}
  Clock& clock() override { return clock_; }

 private:
  class SleeplessClock : public ForwardingClock {
   public:
    using ForwardingClock::ForwardingClock;
    void usleep(std::uint64_t) override { throw Surprise(); }
  };

  SleeplessClock clock_;
};

class PortThatCannotPause : public PortThread {
 protected:
  PortThatCannotPause()
      : PortThread([](std::shared_ptr<Platform> next) -> std::shared_ptr<Platform> {
          return std::make_shared<SleepRaises>(std::move(next));
        }) {}
};

TEST_F(PortThatCannotPause, FailsToOpenThoughTheSessionIsThere) {
  const Port port = create();
  EXPECT_FALSE(port->open());
  EXPECT_EQ(port->result71(), true);
  port->close();
  EXPECT_FALSE(port->isConnected());
}

/// A thread that throws instead of carrying a routine.
class CarryingRaises : public ForwardingPlatform {
 public:
  using ForwardingPlatform::ForwardingPlatform;
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override {
    return std::make_shared<Thread>(ForwardingPlatform::makeThread(std::move(body)));
  }

 private:
  class Thread : public ForwardingThread {
   public:
    using ForwardingThread::ForwardingThread;
    bool performAndWait(std::function<void()>) override { throw Surprise(); }
  };
};

class PortThreadThatCarriesNothing : public PortThread {
 protected:
  PortThreadThatCarriesNothing()
      : PortThread([](std::shared_ptr<Platform> next) -> std::shared_ptr<Platform> {
          return std::make_shared<CarryingRaises>(std::move(next));
        }) {}
};

TEST_F(PortThreadThatCarriesNothing, NeverMakesOpenOrCloseThrow) {
  const Port port = create();
  bool opened = true;
  const std::string all = during([&] {
    EXPECT_NO_THROW(opened = port->open());
    EXPECT_NO_THROW(port->close());
  });
  EXPECT_FALSE(opened);
  EXPECT_NE(all.find("Error open | Throws exception, class: "), std::string::npos) << all;
  EXPECT_NE(all.find("Error close | Throws exception, class: "), std::string::npos) << all;
  pass(0.3);
  EXPECT_TRUE(isHeldBy(port, 1)) << "the thread is ended all the same";
}

}  // namespace
}  // namespace quordalvane::test
