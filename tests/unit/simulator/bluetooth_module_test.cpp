#include <gtest/gtest.h>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

void enterCommandMode(Session& session) {
  session.wait(1s);
  session.send(ascii("///"));
  session.wait(1s);
}

TEST(BluetoothModule, AnswersCommandsAfterAnEscapeSequenceBetweenGuardTimes) {
  Session session(PrinterBuilder().bluetoothAddress("00A1B2C3D4E5"));
  enterCommandMode(session);
  session.send(ascii("AT*AILBA?\r"));
  EXPECT_EQ(session.receive(), ascii("\r\n*AILBA:00A1B2C3D4E5\r\n\r\nOK\r\n"));
  session.send(ascii("AT\r"));
  EXPECT_EQ(session.receive(), ascii("\r\nERROR\r\n"));
  EXPECT_TRUE(session.printer.printed().empty());
}

TEST(BluetoothModule, AcceptsACommandInPieces) {
  Session session;
  enterCommandMode(session);
  session.send(ascii("AT*AI"));
  session.wait(10s);
  EXPECT_EQ(session.receive(), Bytes{});
  session.send(ascii("LBA?\rAT*AILBA?"));
  EXPECT_EQ(session.receive(), ascii("\r\n*AILBA:001122334455\r\n\r\nOK\r\n"));
}

TEST(BluetoothModule, AnswersAnEndlessCommandWithAnError) {
  Session session;
  enterCommandMode(session);
  for (int i = 0; i < 1'000; ++i)
    session.send(Bytes(256, 'A'));
  session.send(ascii("\r"));
  EXPECT_EQ(session.receive(), ascii("\r\nERROR\r\n"));
}

TEST(BluetoothModule, ReturnsAnErrorIfBytesFollowAKnownCommand) {
  Session session;
  enterCommandMode(session);
  for (const char* command :
       {"AT*AILBA?x\r", "AT*AMWS=10,0,0,0,1,0x\r", "AT*AMWS=10,0,0,0,1,0xx\r"}) {
    session.send(ascii(command));
    EXPECT_EQ(session.receive(), ascii("\r\nERROR\r\n")) << command;
  }
}

TEST(BluetoothModule, DropsTheLinkWithinHalfASecondAfterItsReply) {
  Session session;
  enterCommandMode(session);
  session.send(ascii("AT*AMWS=10,0,0,0,1,0\r"));
  const auto due = session.link->nextEvent(session.now);
  ASSERT_TRUE(due.has_value());
  EXPECT_LE(*due - session.now, 500ms);
  EXPECT_GT(*due, session.now);
  EXPECT_FALSE(session.link->dropped(session.now));
  session.now = *due;
  EXPECT_TRUE(session.link->dropped(session.now));
  EXPECT_TRUE(session.link->connected(session.now)) << "the reply is still to be read";
  EXPECT_EQ(session.link->space(session.now), 0U);
  EXPECT_EQ(session.receive(), ascii("\r\nOK\r\n"));
  EXPECT_FALSE(session.link->connected(session.now));
  EXPECT_EQ(session.link->nextEvent(session.now), std::nullopt);
}

TEST(BluetoothModule, IsInDataModeAtTheStartOfANewLink) {
  Session session;
  enterCommandMode(session);
  session.reconnect();
  EXPECT_EQ(session.ask("100401"), hex("12"));
}

struct Near {
  const char* what;
  Instant before;
  const char* bytes;
  Instant after;
  const char* then;
  const char* printed;
};

TEST(BluetoothModule, TreatsAnIncompleteEscapeSequenceAsData) {
  const Near cases[] = {
      {"too little silence before", 999ms, "///", 2s, "", "x///"},
      {"too little silence after", 1s, "///", 999ms, "y", "x///y"},
      {"four of them", 1s, "////", 2s, "", "x////"},
      {"a fourth within a second", 1s, "///", 500ms, "/", "x////"},
      {"two of them", 1s, "//", 2s, "", "x//"},
      {"not alone", 1s, "///z", 2s, "", "x///z"},
      {"not alone before", 1s, "z///", 2s, "", "xz///"},
  };
  for (const Near& c : cases) {
    Session session;
    session.send(ascii("x"));
    session.wait(c.before);
    session.send(ascii(c.bytes));
    session.wait(c.after);
    session.send(ascii(c.then));
    session.wait(2s);
    EXPECT_EQ(session.ask("100401"), hex("12")) << c.what;
    EXPECT_EQ(session.printer.printed(), ascii(c.printed)) << c.what;
  }
}

TEST(BluetoothModule, AcceptsTheEscapeSequenceInPieces) {
  Session session;
  session.wait(1s);
  session.send(ascii("/"));
  session.wait(900ms);
  session.send(ascii("//"));
  EXPECT_EQ(session.link->nextEvent(session.now), session.now + 1s);
  session.wait(1s);
  session.send(ascii("AT\r"));
  EXPECT_EQ(session.receive(), ascii("\r\nERROR\r\n"));
}

TEST(BluetoothModule, PrintsAnIncompleteEscapeSequenceIfTheHostDisconnects) {
  Session session;
  session.wait(1s);
  session.send(ascii("//"));
  session.reconnect();
  EXPECT_EQ(session.printer.printed(), ascii("//"));
}

TEST(BluetoothModule, SendsNoReportOfThePrinterInCommandMode) {
  Session session(PrinterBuilder().speed(1));
  session.send(hex("1b1d03010000"));
  enterCommandMode(session);
  session.wait(10s);
  EXPECT_EQ(session.receive(), Bytes{});
  EXPECT_EQ(session.printer.state().etbCounter, 1);
}

TEST(BluetoothModule, ASecondCommandToDropTheLinkDoesNotDelayTheDrop) {
  Session session;
  enterCommandMode(session);
  session.send(ascii("AT*AMWS=10,0,0,0,1,0\r"));
  const auto due = session.link->nextEvent(session.now);
  session.wait(100ms);
  session.send(ascii("AT*AMWS=10,0,0,0,1,0\r"));
  EXPECT_EQ(session.link->nextEvent(session.now), due);
  EXPECT_EQ(session.receive(), ascii("\r\nOK\r\n\r\nOK\r\n"));
}

}  // namespace
}  // namespace quordalvane::simulator
