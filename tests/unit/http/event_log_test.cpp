#include "tools/http/EventLog.h"

#include <gtest/gtest.h>

#include <array>

namespace quordalvane::http {
namespace {

std::string readAll(EventReader& reader, std::size_t piece) {
  std::string text;
  std::array<char, 64> bytes{};
  for (std::size_t count = 1; count > 0;) {
    count = reader.read(bytes.data(), piece);
    text.append(bytes.data(), count);
  }
  return text;
}

TEST(EventLog, NumbersItsEventsFromOne) {
  EventLog log(1000);
  log.add("state", "{}");
  log.add("log", "[]");
  EXPECT_EQ(log.latest(), 2U);
  EXPECT_EQ(*log.event(1), "id: 1\nevent: state\ndata: {}\n\n");
  EXPECT_EQ(log.event(0), nullptr);
  EXPECT_EQ(log.event(3), nullptr);
}

TEST(EventLog, DropsTheOldestEventsBeyondItsByteLimit) {
  EventLog log(100);
  for (int i = 0; i < 50; ++i) {
    log.add("state", "0123456789");
    EXPECT_LE(log.bytes(), 100U);
  }
  EXPECT_EQ(log.event(1), nullptr);
  EXPECT_NE(log.event(50), nullptr);
  EXPECT_TRUE(log.holdsAllAfter(50));
  EXPECT_FALSE(log.holdsAllAfter(1));
  EXPECT_FALSE(log.holdsAllAfter(51));
}

TEST(EventLog, DropsAnEventThatIsLongerThanItsByteLimit) {
  EventLog log(20);
  log.add("state", std::string(100, 'x'));
  EXPECT_EQ(log.bytes(), 0U);
  EXPECT_FALSE(log.holdsAllAfter(0));
}

TEST(EventReader, ReadsTheInitialTextsAndThenEachNewEvent) {
  EventLog log(1000);
  log.add("old", "{}");
  for (const std::size_t piece : {1U, 3U, 64U}) {
    EventReader reader(log, {eventText("snapshot", "{}")}, log.latest());
    EXPECT_EQ(readAll(reader, piece), "event: snapshot\ndata: {}\n\n");
    EXPECT_FALSE(reader.hasMore());
    log.add("state", "[1]");
    EXPECT_TRUE(reader.hasMore());
    EXPECT_EQ(readAll(reader, piece),
              "id: " + std::to_string(log.latest()) + "\nevent: state\ndata: [1]\n\n");
  }
}

TEST(EventReader, CannotContinueIfTheLogHasDroppedTheEventToReadNext) {
  EventLog log(100);
  EventReader reader(log, {}, 0);
  log.add("state", "0123456789");
  EXPECT_FALSE(reader.isLost());
  for (int i = 0; i < 10; ++i) {
    log.add("state", "0123456789");
  }
  EXPECT_TRUE(reader.isLost());
}

TEST(EventReader, GetsAKeepAliveLineOnlyIfItHasNothingToRead) {
  EventLog log(1000);
  EventReader reader(log, {}, 0);
  reader.keepAlive();
  reader.keepAlive();
  EXPECT_EQ(readAll(reader, 64), ":\n\n");
  log.add("state", "{}");
  reader.keepAlive();
  EXPECT_EQ(readAll(reader, 64), "id: 1\nevent: state\ndata: {}\n\n");
}

}  // namespace
}  // namespace quordalvane::http
