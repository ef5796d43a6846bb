#include "tests/trace/RandomScenario.h"

#include <algorithm>
#include <utility>

#include "tests/support/Dice.h"

namespace quordalvane::test {
namespace {

Bytes statusBlock(Dice& dice) {
  Bytes block = bytes("89 01 00 00 00 00 00 00 05");
  for (std::size_t place = 2; place < 6; ++place) {
    block[place] = dice.oneIn(2) ? 0 : dice.byte();
  }
  constexpr std::uint8_t all = 0xff;
  block[2] &= dice.oneIn(3) ? all : std::uint8_t{0xfd};  // the printer is mostly on line
  block[4] &= dice.oneIn(3) ? all : std::uint8_t{0xef};  // the printer's paper exit is mostly empty
  block[6] = dice.among<std::uint8_t>({0, 0, 0, 1, 2, 2, 2, 3, 255});
  if (dice.oneIn(5)) {
    block.resize(1 + dice.below(63), 0x5a);
    block[0] = static_cast<std::uint8_t>(std::size_t{dice.byte()} << 6U | block.size());
  }
  return dice.oneIn(8) ? block + dice.bytes(dice.below(70)) : block;
}

Bytes realTimeStatus(Dice& dice) {
  return {dice.oneIn(8) ? dice.byte() : static_cast<std::uint8_t>(0x12 | (dice.byte() & 0x6c))};
}

Bytes firmwareText(Dice& dice) {
  Bytes text(dice.among<std::size_t>({1, 2, 6, 20, 63, 64, 65}));
  std::generate(text.begin(), text.end(), [&dice] {
    return dice.oneIn(100) ? dice.byte() : static_cast<std::uint8_t>(0x20 + dice.below(95));
  });
  return text;
}

Bytes moduleReply(Dice& dice) {
  const Bytes address = ascii("\r\n*AILBA:0011223344FF\r\n");
  const Bytes fine = ascii("\r\nOK\r\n");
  const Bytes error = ascii("\r\nERROR\r\n");
  switch (dice.below(8)) {
    case 0:
      return error;
    case 1:
      return fine;
    case 2:
      return address + error + fine;
    case 3:
      return dice.bytes(3) + address + fine + dice.bytes(2);
    case 4:
      return ascii("*AILBA:0011") + fine;
    default:
      return address + fine;
  }
}

Bytes damaged(Dice& dice, Bytes reply) {
  switch (dice.below(12)) {
    case 0:
      reply.resize(dice.below(reply.size() + 1));
      return reply;
    case 1:
      return reply + reply;
    case 2:
      return Bytes{dice.byte()} + reply;
    case 3:
      reply[dice.below(reply.size())] = dice.byte();
      return reply;
    default:
      return reply;
  }
}

Reply inPieces(Dice& dice, const Bytes& whole) {
  Reply reply;
  double after = dice.oneIn(2) ? 0 : dice.seconds(1);
  for (auto first = whole.begin(); first != whole.end();) {
    const auto left = static_cast<std::uint64_t>(whole.end() - first);
    const auto count = static_cast<std::ptrdiff_t>(dice.oneIn(2) ? left : 1 + dice.below(left));
    reply.push_back({Bytes(first, first + count), after});
    first += count;
    after += dice.among({0.01, 0.06, 0.2, 0.5, 4.0});
  }
  return reply;
}

/// Lets the printer answer this request: always in the same way, in several ways in turn, or never.
void answer(Dice& dice, Script& script, const Bytes& request, Bytes (*reply)(Dice&)) {
  if (dice.oneIn(8)) {
    return;
  }
  const std::uint64_t different = dice.below(4);
  for (std::uint64_t nth = 0; nth < different; ++nth) {
    script.whenAsked(request, inPieces(dice, damaged(dice, reply(dice))));
  }
  if (!dice.oneIn(4)) {
    script.wheneverAsked(request, inPieces(dice, reply(dice)));
  }
}

void letPrinterAnswer(Dice& dice, Script& script) {
  answer(dice, script, bytes("1b 06 01"), statusBlock);
  for (const char* query : {"10 04 01", "10 04 02", "10 04 04"}) {
    answer(dice, script, bytes(query), realTimeStatus);
  }
  answer(dice, script, bytes("1b 1d 03 01 00 00"), [](Dice& chance) {
    return bytes("1b 1d 03 01 00 00") + Bytes{chance.among<std::uint8_t>({0, 1, 1, 2})} +
           bytes("00");
  });
  answer(dice, script, bytes("1b 23 2a 0a 00"),
         [](Dice& chance) { return bytes("1b 23 2a") + firmwareText(chance) + bytes("0a 00"); });
  answer(dice, script, bytes("1d 49 41"), [](Dice& chance) {
    return chance.oneIn(10) ? bytes("5f") : bytes("5f") + firmwareText(chance) + bytes("00");
  });
  for (const char* bank : {"31", "32"}) {
    answer(dice, script, bytes("1b 23 2c") + bytes(bank) + bytes("0a 00"), [](Dice& chance) {
      return bytes("1b 23 2c 31") + chance.bytes(chance.oneIn(6) ? chance.below(4) : 2) +
             bytes("0a");
    });
  }
  answer(dice, script, ascii("AT*AILBA?\r"), moduleReply);
}

void letLinkMisbehave(Dice& dice, Script& script) {
  switch (dice.below(10)) {
    case 0:
      script.isLost(dice.seconds(6));
      if (dice.oneIn(3)) {
        script.isBack(*script.lostAt + dice.seconds(2));
      }
      break;
    case 1:
      script.isLostAfterBytes(dice.below(60));
      break;
    case 2:
      script.isLostAfterReads(dice.below(8));
      break;
    case 3:
      for (std::uint64_t attempt = 1 + dice.below(5); attempt > 0; --attempt) {
        script.attempts.push_back(dice.below(14));
      }
      break;
    case 4:
      script.takesAtMost(1 + dice.below(7));
      break;
    case 5:
      script.hasNoSpace(dice.seconds(4));
      break;
    case 6:
      script.writeReturns(1 + dice.below(8), dice.oneIn(3) ? 0 : -1);
      break;
    case 7:
      script.readReturns(1 + dice.below(8), dice.among({-1, -2, 0}));
      break;
    case 8:
      for (std::uint64_t question = 1 + dice.below(30); question > 0; --question) {
        script.connectedAnswers.push_back(!dice.oneIn(10));
      }
      break;
    default:
      script.givesAtMost(1 + dice.below(9));
      break;
  }
}

Call randomCall(Dice& dice) {
  switch (dice.below(14)) {
    case 0:
      return write(dice.bytes(dice.below(300)));
    case 1:
      return read(dice.among<std::size_t>({0, 1, 7, 127, 128, 129, 300}));
    case 2:
      return writeWithRetry(dice.bytes(dice.below(14)));
    case 3:
      return getPrinterResponse(dice.oneIn(3) ? std::nullopt : std::optional("*AILBA:"),
                                dice.among({0, 1, 12, 13, -1}),
                                dice.among({-1, 0, 999, 1000, 1999, 3000}));
    case 4:
      return inTurn({beginCheckedBlock(), write(dice.bytes(20)), endCheckedBlock()});
    case 5:
      return inTurn({close(), open(), isConnected()});
    default:
      break;
  }
  const std::vector<Call> calls = allCalls();
  return calls[dice.below(calls.size())];
}

void setLimits(Dice& dice, Scenario& scenario) {
  if (dice.oneIn(2)) {
    scenario.endMillis = dice.among<std::uint32_t>({0, 999, 1000, 4000});
  }
  if (dice.oneIn(2)) {
    scenario.holdMillis = dice.among<std::uint32_t>({0, 999, 1000, 5000});
  }
  if (dice.oneIn(2)) {
    scenario.dataTimeoutSeconds = dice.among<std::int64_t>({-1, 0, 10, 255, 256, 300});
  }
}

AccessoryIdentity randomAccessory(Dice& dice) {
  using Text = std::optional<std::string>;
  AccessoryIdentity identity;
  identity.name = dice.among<Text>({"Shop printer", "Till", "", std::nullopt});
  identity.serialNumber = dice.among<Text>({"S-17", "Till", "", std::nullopt});
  identity.modelNumber =
      dice.among<Text>({"XQ300", "XQ700", "KLT-7", "KLT-7-U", "-U", std::nullopt});
  identity.manufacturer =
      dice.among<Text>({"quor dalvane", "quor dalvane", "Quor DALVANE", "quor", "", std::nullopt});
  if (dice.oneIn(4)) {
    identity.protocolStrings.insert(identity.protocolStrings.begin(), "com.example.other");
    identity.protocolStrings.resize(dice.below(3));
  }
  identity.address = dice.among<const char*>({"", "00:11:22:33:44:55", "00:11:22:aa:bb:cc"});
  identity.connectionID = dice.below(100);
  return identity;
}

/// A port and accessories of any kind; perhaps none of them fits the port.
void drawPortAndAccessories(Dice& dice, Scenario& scenario) {
  using Text = std::optional<std::string>;
  scenario.creation.portName = dice.among<Text>(
      {"BT:", "bt:", std::nullopt, "BT:Till", "BT:S-17", "BT:00:11:22:33:44:55",
       "BT:00:11:22:AA:BB:CC", "BT:001122334455", "BT:x00:11:22:33:44:55", "USB:Till"});
  scenario.creation.portSettings =
      dice.among<Text>({"", std::nullopt, "d0", "d10", "mini;d255", "d256", "D10", "d3;d7",
                        "d99999999999", "dd1d2"});
  scenario.systemVersion = dice.among<const char*>({"9.3.5", "9.9", "10", "10.0.1", "17.2"});
  scenario.accessories.clear();
  for (std::uint64_t count = dice.below(4); count > 0; --count) {
    scenario.accessories.push_back(randomAccessory(dice));
  }
  scenario.opens = Scenario::Opens::Perhaps;
}

}  // namespace

RandomCase randomCase(std::uint64_t seed) {
  Dice dice(seed);
  Scenario scenario =
      Scenario::in(dice.oneIn(8) ? unknownEmulation : dice.among({lineMode, escPos}),
                   dice.among<std::uint32_t>({0, 1, 999, 1000, 1999, 2000, 3000, 3000, 10000}));
  setLimits(dice, scenario);
  scenario.isOpen = !dice.oneIn(30);
  scenario.logging = !dice.oneIn(8);
  scenario.levels = dice.oneIn(10) ? std::set<std::int32_t>{1} : std::set<std::int32_t>{0};
  Script& script = scenario.script;
  script.lostAfterCalls = 2000;
  script.expects = dice.among({Script::Expects::Always, Script::Expects::Always,
                               Script::Expects::Never, Script::Expects::WhereAsked});
  script.startMicroseconds = static_cast<std::int64_t>(dice.below(1000000));
  if (dice.oneIn(6)) {
    script.delivers(dice.bytes(1 + dice.below(300)), dice.oneIn(2) ? 0 : dice.seconds(3));
  }
  letPrinterAnswer(dice, script);
  for (std::uint64_t faults = dice.below(3); faults > 0; --faults) {
    letLinkMisbehave(dice, script);
  }
  if (dice.oneIn(8)) {
    script.stepsClock(1 + dice.below(5), dice.among({-3600, -1, 1, 3600}));
  }
  Call call = randomCall(dice);
  if (call.name == "getPrinterResponse" && !dice.oneIn(4)) {
    script.deliveries = inPieces(dice, damaged(dice, moduleReply(dice)));
  }
  if (dice.oneIn(4)) {
    drawPortAndAccessories(dice, scenario);
    call = dice.oneIn(2) ? inTurn({close(), open(), isConnected(), std::move(call)}) : call;
  }
  return {std::move(scenario), std::move(call)};
}

}  // namespace quordalvane::test
