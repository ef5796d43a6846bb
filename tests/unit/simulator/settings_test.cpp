#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(PrinterSettings, CanBeSetByTheirKeys) {
  PrinterState state;
  state.set("coverOpen", "true");
  state.set("firmware", "Ver 2.10");
  state.set("dip1", "c00a");
  state.set("dip2", "00FF");
  state.set("speed", "200");
  state.set("buffer", "16");
  state.set("presenterState", "3");
  state.set("connectedInterface", "2");
  state.set("paper", "58");
  state.set("lacks", "1b4c");
  state.set("flow", "xonxoff");
  EXPECT_TRUE(state.flowControl);
  EXPECT_TRUE(state.lacked.has(hex("1b4c")));
  EXPECT_FALSE(state.lacked.has(hex("1b53")));
  EXPECT_TRUE(state.flag(Flag::CoverOpen));
  EXPECT_EQ(state.firmware(), "Ver 2.10");
  EXPECT_EQ(state.dipBanks[0], (DipBank{0xc0, 0x0a}));
  EXPECT_EQ(state.dipBanks[1], (DipBank{0x00, 0xff}));
  EXPECT_EQ(state.buttonSecurity(), 3U);
  EXPECT_EQ(state.bytesPerSecond, 200U);
  EXPECT_EQ(state.bufferSize(), 16U);
  EXPECT_EQ(state.presenterState, 3);
  EXPECT_EQ(state.connectedInterface, 2);
  EXPECT_EQ(state.paperMillimetres(), 58U);
}

TEST(PrinterSettings, AreReadBackAsTheyWereSet) {
  const std::pair<const char*, const char*> values[] = {
      {"lacks", "1b4c+1d286b"}, {"lacks", "none"},    {"codePages", "0:437+16:1252"},
      {"codePages", "small"},   {"flow", "xonxoff"},  {"flow", "none"},
      {"proofs", "block"},      {"dip1", "c00a"},     {"multiByte", "big5"},
      {"utf8", "true"},         {"speed", "200"},     {"paper", "58"},
      {"lineMode", "false"},    {"maker", "A maker"}, {"typeId", "3"},
  };
  for (const auto& [key, value] : values) {
    PrinterState state;
    state.set(key, value);
    EXPECT_EQ(state.get(key), value) << key;
  }
  EXPECT_EQ(PrinterState().get("colour"), std::nullopt);
}

TEST(PrinterSettings, SetEachFlagByItsName) {
  for (std::size_t k = 0; k < flagCount; ++k) {
    PrinterState state;
    const auto flag = static_cast<Flag>(k);
    state.set(flagNames[k], "true");
    EXPECT_TRUE(state.flag(flag)) << flagNames[k];
    state.set(flagNames[k], "false");
    EXPECT_FALSE(state.flag(flag)) << flagNames[k];
  }
}

TEST(PrinterSettings, TheErrorOfAWrongValueNamesTheKeyAndTheAllowedValues) {
  const struct {
    const char* key;
    const char* value;
    const char* takes;
  } cases[] = {
      {"coverOpen", "yes", "true or false"},
      {"firmware", "", "1 to 64 printable ASCII"},
      {"firmware", "a\nb", "1 to 64 printable ASCII"},
      {"dip1", "c0", "four hex digits"},
      {"dip2", "c0zz", "four hex digits"},
      {"speed", "fast", "bytes a second"},
      {"speed", "-1", "bytes a second"},
      {"speed", "12x", "bytes a second"},
      {"speed", "4294967296", "bytes a second"},
      {"buffer", "15", "16 or more"},
      {"presenterState", "4", "0 to 3"},
      {"connectedInterface", "6", "0 to 5"},
      {"connectedInterface", "260", "0 to 5"},
      {"paper", "60", "58 or 80"},
      {"flow", "rtscts", R"("none" or "xonxoff")"},
      {"colour", "red", "receiptPaperEmpty"},
  };
  for (const auto& c : cases) {
    PrinterState state;
    EXPECT_THAT(
        [&] { state.set(c.key, c.value); },
        ThrowsMessage<std::invalid_argument>(testing::AllOf(HasSubstr(c.key), HasSubstr(c.takes))))
        << c.key << "=" << c.value;
  }
}

TEST(PrinterSettings, TheErrorOfAWrongValueIsPrintable) {
  const std::string odd = "\x1b[31m\a\x7f\xc2\x9b\n";
  const auto printable = [](char c) { return c >= ' ' && c <= '~'; };
  const auto expectShown = [&](const auto& refused) {
    try {
      refused();
      FAIL() << "was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_TRUE(std::ranges::all_of(std::string_view(error.what()), printable)) << error.what();
    }
  };
  expectShown([&] { PrinterState().set(odd, "1"); });
  expectShown([&] { PrinterState().set("speed", odd); });
  expectShown([&] { parseFault(odd, "1"); });
  expectShown([&] { parseFault("late-reply", odd); });
}

TEST(PrinterSettings, AcceptAFirmwareTextOfAtMost64Characters) {
  PrinterState state;
  EXPECT_NO_THROW(state.setFirmware(std::string(64, '~')));
  EXPECT_THROW(state.setFirmware(std::string(65, '~')), std::invalid_argument);
}

TEST(PrinterSettings, ButtonSecuritySetsTheTopTwoBitsOfDipSwitchBank1) {
  const PrinterState state = PrinterBuilder().dipBank1({0x15, 0x77}).buttonSecurity(2).state();
  EXPECT_EQ(state.dipBanks[0], (DipBank{0x95, 0x77}));
  EXPECT_EQ(state.buttonSecurity(), 2U);
  EXPECT_THROW(PrinterBuilder().buttonSecurity(4), std::invalid_argument);
}

TEST(PrinterSettings, ABluetoothAddressHasTwelveHexDigits) {
  EXPECT_EQ(PrinterBuilder().bluetoothAddress("0A1b2C3d4E5f").state().bluetoothAddress(),
            "0A1b2C3d4E5f");
  EXPECT_THROW(PrinterBuilder().bluetoothAddress("00:11:22:33:44:55"), std::invalid_argument);
}

TEST(PrinterSettings, TakeEffectAtOnceOnARunningPrinter) {
  Session session;
  EXPECT_TRUE(session.printer.setFlag("coverOpen", true, session.now));
  EXPECT_FALSE(session.printer.setFlag("coverAjar", true, session.now));
  EXPECT_EQ(session.ask("100402"), hex("16"));
  session.printer.set("coverOpen", "false", session.now);
  EXPECT_EQ(session.ask("100402"), hex("12"));
}

}  // namespace
}  // namespace quordalvane::simulator
