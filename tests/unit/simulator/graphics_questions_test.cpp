#include <gtest/gtest.h>

#include "simulator/TextRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

constexpr const char* keep = "43";
constexpr const char* download = "53";

// One row of eight dots, stored under a name of two characters.
Bytes store(const char* memory, const Bytes& name) {
  return hex("1d284c 0c00 30") + hex(memory) + hex("30") + name + hex("01 0800 0100 31 ff");
}

std::size_t numberIn(const Bytes& reply) {
  return std::stoul(std::string(reply.begin() + 2, reply.end() - 1));
}

TEST(GraphicsMemoryRequest, ReportsLessFreeMemoryAfterEachStoredImage) {
  Session session;
  const std::size_t empty = numberIn(session.ask("1d284c02003033"));
  session.send(store(keep, ascii("A1")));
  const std::size_t withOne = numberIn(session.ask("1d284c02003033"));
  EXPECT_LT(withOne, empty);
  session.send(store(download, ascii("A1")));
  EXPECT_LT(numberIn(session.ask("1d284c02003034")), withOne);
  EXPECT_EQ(numberIn(session.ask("1d284c02003030")), empty) << "the whole stays as it is";
}

TEST(GraphicsMemoryRequest, ReturnsTheKeysOfTheImagesInEachMemory) {
  Session session;
  session.send(store(keep, ascii("A1")) + store(keep, ascii("B1")) + store(download, ascii("C1")));
  EXPECT_EQ(session.ask("1d284c04003040 4b43"), hex("37 72 40") + ascii("A1B1") + hex("00"));
  EXPECT_EQ(session.ask("1d284c04003050 4b43"), hex("37 73 40") + ascii("C1") + hex("00"));
}

TEST(GraphicsMemoryRequest, ReturnsMoreThanFortyKeysInGroups) {
  Session session(PrinterBuilder().buffer(4096));
  for (std::uint8_t i = 0; i < 41; ++i) {
    session.send(store(keep, {static_cast<std::uint8_t>(' ' + i), '1'}));
  }
  const Bytes first = session.ask("1d284c04003040 4b43");
  ASSERT_EQ(first.size(), 3U + 80U + 1U);
  EXPECT_EQ(Bytes(first.begin(), first.begin() + 5), hex("37 72 41") + ascii(" 1"));
  EXPECT_EQ(session.ask("15"), first) << "again";
  const Bytes second = hex("37 72 40") + ascii("H1") + hex("00");
  EXPECT_EQ(session.ask("06"), second);
  EXPECT_EQ(session.ask("15"), second) << "again";
  EXPECT_EQ(session.ask("06"), Bytes()) << "there is no third group";
}

TEST(GraphicsMemoryRequest, ReturnsNoFurtherKeysToAHostThatCancels) {
  Session session(PrinterBuilder().buffer(4096));
  for (std::uint8_t i = 0; i < 41; ++i) {
    session.send(store(download, {static_cast<std::uint8_t>(' ' + i), '1'}));
  }
  for (const char* const ending : {"18", "1b40"}) {
    session.ask("1d284c04003050 4b43");
    session.ask(ending);
    EXPECT_EQ(session.ask("06"), Bytes()) << ending;
  }
}

TEST(GraphicsMemoryRequest, PrintsNothing) {
  Session session;
  session.ask("1d284c04003040 4b43 06 15 1d284c02003030");
  EXPECT_EQ(renderText(session.printer.paper()), "");
}

}  // namespace
}  // namespace quordalvane::simulator
