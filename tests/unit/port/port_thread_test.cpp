#include "tests/unit/port/PortThreadFixture.h"

namespace quordalvane::test {
namespace {

TEST_F(PortThread, RunsAnOpenThatTheMainThreadRequests) {
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

TEST_F(PortThread, ClosesThePortForTheMainThreadAndEndsAfterwards) {
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

TEST_F(PortThread, LogsEachSliceOfItsRunLoopOnce) {
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

TEST_F(PortThread, ReleasesThePortWithinThreeTenthsOfASecondAfterTheClose) {
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

TEST_F(PortThread, EndsEvenIfTheApplicationKeepsTheThreadsHandle) {
  Port port = create();
  const std::shared_ptr<NSThread> handle = port->thread71();
  const std::weak_ptr<ExternalAccessoryPort> weak = port;
  port->close();
  port.reset();
  pass(0.3);
  EXPECT_TRUE(isHeldBy(weak, 0)) << "there is no cycle through the handle";
}

TEST_F(PortThread, ContinuesAfterACloseThatAnotherThreadCalls) {
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

TEST_F(PortThread, APortOpenedOnAnotherThreadCanBeClosedOnTheMainThread) {
  const Port port = create();
  elsewhere([&port] { EXPECT_TRUE(port->open()); });
  EXPECT_TRUE(port->isConnected());
  port->close();
  EXPECT_FALSE(port->isConnected());
}

TEST_F(PortThread, IsNotUsedIfAnotherThreadOpensThePort) {
  const Port port = create();
  const std::string all = during([&] { elsewhere([&port] { EXPECT_TRUE(port->open()); }); });
  EXPECT_EQ(all.find("performAndWait"), std::string::npos);
  EXPECT_EQ(all.find("isMainThread"), std::string::npos);
  port->close();
}

TEST_F(PortThread, OpenAndCloseWorkOnTheMainThreadIfThePortThreadWasNeverMade) {
  world_.machine().setMainThread(false);
  const Port port = create();
  EXPECT_EQ(port->thread71(), nullptr);
  world_.machine().setMainThread(true);
  EXPECT_TRUE(port->open());
  EXPECT_TRUE(port->isConnected());
  port->close();
  EXPECT_FALSE(port->isConnected());
}

TEST_F(PortThread, OpenAndCloseWorkOnTheMainThreadIfThePortThreadHasEnded) {
  const Port port = create();
  port->close();
  pass(1);
  EXPECT_TRUE(port->open());
  EXPECT_TRUE(port->isConnected());
  port->close();
  EXPECT_FALSE(port->isConnected());
}

TEST_F(PortThread, OpenAndCloseWorkOnTheMainThreadWhileThePortThreadEnds) {
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

TEST_F(PortThread, GetsNoMoreRoutinesWhileItEnds) {
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

TEST_F(PortThread, RunsManyCyclesOfOpenAndClose) {
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

TEST_F(PortThread, AFailedOpenTakesATenthOfASecond) {
  world_.machine().detachAll();
  const Port port = create();
  const double before = now();
  EXPECT_FALSE(port->open());
  EXPECT_GE(now() - before, 0.1);
  port->close();
}

TEST_F(PortThread, AFailedOpenReplacesTheResultOfAnEarlierOpen) {
  const Port port = create();
  EXPECT_TRUE(port->open());
  world_.machine().detachAll();
  EXPECT_FALSE(port->open());
  EXPECT_EQ(port->result71(), false);
  port->close();
  EXPECT_EQ(port->result71(), false) << "a close does not touch it";
}

}  // namespace
}  // namespace quordalvane::test
