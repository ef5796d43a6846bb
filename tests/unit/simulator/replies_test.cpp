#include <gtest/gtest.h>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

struct Exchange {
  const char* what;
  PrinterBuilder printer;
  const char* request;
  Bytes reply;
};

std::vector<Exchange> exchanges() {
  const PrinterBuilder plain = PrinterBuilder().firmware("F1");
  return {
      {"a lone status request", plain, "1b 06 01", hex("89 01 00000020 00 00 05")},
      {"the whole line-mode request", plain, "1b2a7242 1b1d03040000 1b0601",
       hex("89 01 00000020 00 00 05")},
      {"an open cover is off line", PrinterBuilder().coverOpen(), "1b0601",
       hex("89 01 03000020 00 00 05")},
      {"paper out is off line", PrinterBuilder().paperOut(), "1b0601",
       hex("89 01 02000220 00 00 05")},
      {"paper in the exit is not", PrinterBuilder().paperInExit(), "1b0601",
       hex("89 01 00001020 00 00 05")},
      {"state bytes",
       PrinterBuilder().etbCounter(0xab).presenterState(2).connectedInterface(3).with(
           Flag::EtbAvailable, false),
       "1b0601", hex("89 01 00000000 ab 02 03")},
      {"preparing has no reply", plain, "1b2a7242", {}},
      {"firmware in line mode", plain, "1b232a0a00", hex("1b232a 4631 0a00")},
      {"firmware in ESC/POS", plain, "1d4941", hex("5f 4631 00")},
      {"bank 1", PrinterBuilder().dipBank1({0x0a, 0x00}), "1b232c310a00", hex("1b232c31 0a00 0a")},
      {"bank 2", PrinterBuilder().dipBank2({0x1b, 0xff}), "1b232c320a00", hex("1b232c32 1bff 0a")},
      {"there is no bank 3", plain, "1b232c330a00", {}},
      {"drawer, nothing set", plain, "100401", hex("12")},
      {"drawer open", PrinterBuilder().with(Flag::CompulsionSwitch), "100401", hex("16")},
      {"off line", PrinterBuilder().offline(), "100401", hex("1a")},
      {"cover shut", plain, "100402", hex("12")},
      {"cover open", PrinterBuilder().coverOpen(), "100402", hex("16")},
      {"paper there", plain, "100404", hex("12")},
      {"paper near its end", PrinterBuilder().with(Flag::ReceiptPaperNearEmptyInner), "100404",
       hex("1e")},
      {"paper out", PrinterBuilder().paperOut(), "100404", hex("72")},
      {"paper out is a cause of being off line", PrinterBuilder().paperOut(), "100402", hex("32")},
      {"an error is one", PrinterBuilder().with(Flag::JamError), "100402", hex("52")},
      {"no error", plain, "100403", hex("12")},
      {"an error that an operator clears", PrinterBuilder().with(Flag::JamError), "100403",
       hex("16")},
      {"a cutter error", PrinterBuilder().with(Flag::CutterError), "100403", hex("1a")},
      {"an error that nobody clears", PrinterBuilder().with(Flag::UnrecoverableError), "100403",
       hex("32")},
      {"an error that passes", PrinterBuilder().with(Flag::OverTemp), "100403", hex("52")},
      {"devices that it lacks", PrinterBuilder().coverOpen(), "100405 100406 10040701 10040801",
       hex("12 12 12 12")},
      {"no such query", plain, "100400 100409", {}},
      {"identity in numbers", plain, "1d4901 1d4902 1d4903 1d4931 1d4932 1d4933",
       hex("20 02 01 20 02 01")},
      {"identity in texts", PrinterBuilder().set("maker", "M").set("modelName", "N"),
       "1d4942 1d4943", hex("5f 4d 00 5f 4e 00")},
      {"serial number and font", PrinterBuilder().set("serialNumber", "S7"), "1d4944 1d4945",
       hex("5f 5337 00 5f 00")},
      {"no such identity", plain, "1d4999", {}},
      {"drawer and paper in turn",
       PrinterBuilder().with(Flag::CompulsionSwitch).with(Flag::ReceiptPaperNearEmptyInner),
       "1b7500 1b76", hex("01 03")},
      {"paper in turn, by a number and a digit, and the drawer",
       PrinterBuilder().with(Flag::CompulsionSwitch).with(Flag::ReceiptPaperNearEmptyInner),
       "1d7201 1d7231 1d7202 1d7232", hex("03 03 01 01")},
      {"settings", plain, "1d28450200 0401 1d28450200 0605",
       hex("37 21 3030303030303030 00 37 27 35 1f 30 00")},
      {"a change of settings begins", plain, "1d28450300 01494e", hex("37 20 00")},
      {"the size of the memory of images", plain, "1d284c02003000 1d284c02003030",
       hex("37 30 31303438353736 00 37 30 31303438353736 00")},
      {"its free part", plain, "1d284c02003003 1d284c02003033",
       hex("37 31 31303438353736 00 37 31 31303438353736 00")},
      {"its free part for downloads", plain, "1d284c02003004 1d284c02003034",
       hex("37 32 31303438353736 00 37 32 31303438353736 00")},
      {"no image is stored", plain, "1d284c04003040 4b43 1d284c04003050 4b43",
       hex("37 72 40 00 37 73 40 00")},
      {"cancel, its end and its time-out are silent",
       plain,
       "1b1d03050105 1b1d03030000 1b1d03040000",
       {}},
      {"counter resets are silent", plain, "1b1e4500 1b1d03020000", {}},
      {"an ETB of line mode is silent", plain, "17", {}},
      {"an ETB of ESC/POS reports", plain, "1b1d03010000", hex("1b1d03010000 01 00")},
      {"reports count on, and wrap", PrinterBuilder().etbCounter(0xfe), "1b1d03010000 1b1d03010000",
       hex("1b1d03010000 ff 00 1b1d03010000 00 00")},
      {"both systems on one stream", plain, "100401 1b0601 100402",
       hex("12 89 01 00000020 00 00 05 12")},
  };
}

TEST(PrinterReplies, HaveTheDocumentedBytes) {
  for (const Exchange& exchange : exchanges()) {
    Session session(exchange.printer);
    EXPECT_EQ(session.ask(exchange.request), exchange.reply) << exchange.what;
  }
}

TEST(PrinterReplies, AreTheSameIfTheRequestArrivesInPieces) {
  for (const Exchange& exchange : exchanges()) {
    const Bytes request = hex(exchange.request);
    for (std::size_t at = 0; at <= request.size(); ++at) {
      Session session(exchange.printer);
      const auto middle = request.begin() + static_cast<std::ptrdiff_t>(at);
      session.send(Bytes(request.begin(), middle));
      session.wait(10ms);
      session.send(Bytes(middle, request.end()));
      EXPECT_EQ(session.receive(), exchange.reply) << exchange.what << ", split at " << at;
      EXPECT_TRUE(session.printer.paper().items().empty()) << exchange.what << ", split at " << at;
    }
  }
}

TEST(RecoveryRequest, ClearsErrorsAndCanDropTheData) {
  Session session(PrinterBuilder().with(Flag::CutterError));
  session.send(ascii("kept\n"));
  session.send("100501");
  EXPECT_EQ(session.printer.printed(), ascii("kept\n"));
  session.printer.setFlag("jamError", true, session.now);
  session.send(ascii("dropped\n"));
  session.send("100502");
  EXPECT_EQ(session.printer.printed(), ascii("kept\n"));
  EXPECT_FALSE(session.printer.state().flag(Flag::Offline));
  session.printer.setFlag("voltageError", true, session.now);
  session.send("100501");
  EXPECT_TRUE(session.printer.state().flag(Flag::Offline));
}

TEST(StatusBlock, HasABitForEachFlag) {
  for (std::size_t k = 0; k < flagCount; ++k) {
    PrinterState state;
    for (std::size_t other = 0; other < flagCount; ++other)
      state.setFlag(static_cast<Flag>(other), other == k);
    Session session(PrinterBuilder().with(Flag::EtbAvailable, false).with(static_cast<Flag>(k)));
    Bytes block = session.ask(statusRequest);
    ASSERT_EQ(block.size(), 9U);
    const std::uint8_t bit = static_cast<std::uint8_t>(1U << k % 8);
    EXPECT_TRUE((block[2 + k / 8] & bit) != 0) << flagNames[k];
    block[2 + k / 8] = static_cast<std::uint8_t>(block[2 + k / 8] & ~bit);
    block[2] =
        static_cast<std::uint8_t>(block[2] & ~2U);  // the flag may also make the printer off line
    EXPECT_EQ(block, hex("89 01 00000000 00 00 05")) << flagNames[k];
  }
}

TEST(OffLineFlag, IsSetByOpenCoverMissingPaperAndErrorsOnly) {
  for (std::size_t k = 0; k < flagCount; ++k) {
    const auto flag = static_cast<Flag>(k);
    const bool error = flag >= Flag::OverTemp && flag <= Flag::VoltageError;
    const bool stops = error || flag == Flag::CoverOpen || flag == Flag::Offline ||
                       flag == Flag::ReceiptPaperEmpty;
    EXPECT_EQ(PrinterBuilder().with(flag).state().flag(Flag::Offline), stops) << flagNames[k];
  }
}

TEST(PrinterReplies, TakeBoundedMemoryIfTheHostNeverReads) {
  Session session;
  for (int i = 0; i < 20'000; ++i)
    session.send(statusRequest);
  EXPECT_LE(session.link->available(session.now), 64U * 1024U);
  EXPECT_EQ(session.receive().size() % 9, 0U) << "a reply is kept whole or not at all";
  for (int i = 0; i < 70'000; ++i)
    session.send("100401");
  EXPECT_EQ(session.link->available(session.now), 64U * 1024U);
}

}  // namespace
}  // namespace quordalvane::simulator
