#include "platform/Forwarding.h"
#include "tests/unit/port/PortThreadFixture.h"

namespace quordalvane::test {
namespace {

class Surprise {};

/// A platform whose list of accessories throws.
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

class PortThreadOnWhichTheOpenThrows : public PortThread {
 protected:
  PortThreadOnWhichTheOpenThrows()
      : PortThread([](std::shared_ptr<Platform> next) -> std::shared_ptr<Platform> {
          return std::make_shared<ListRaises>(std::move(next));
        }) {}
};

TEST_F(PortThreadOnWhichTheOpenThrows, MakesTheOpenFail) {
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

TEST_F(PortThatCannotPause, FailsToOpenEvenIfItsSessionWasOpened) {
  const Port port = create();
  EXPECT_FALSE(port->open());
  EXPECT_EQ(port->result71(), true);
  port->close();
  EXPECT_FALSE(port->isConnected());
}

/// A thread that throws instead of running a routine that is passed to it.
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

class PortThreadThatRefusesRoutines : public PortThread {
 protected:
  PortThreadThatRefusesRoutines()
      : PortThread([](std::shared_ptr<Platform> next) -> std::shared_ptr<Platform> {
          return std::make_shared<CarryingRaises>(std::move(next));
        }) {}
};

TEST_F(PortThreadThatRefusesRoutines, NeverMakesOpenOrCloseThrow) {
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
