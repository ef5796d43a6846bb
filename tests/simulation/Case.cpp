#include "tests/simulation/Case.h"

#include <array>
#include <initializer_list>
#include <ostream>

#include "tests/support/Dice.h"

namespace quordalvane::simulation {
namespace {

using test::Dice;

void append(ByteBuffer& data, std::initializer_list<int> bytes) {
  for (const int byte : bytes) {
    data.push_back(static_cast<std::uint8_t>(byte));
  }
}

void appendLine(ByteBuffer& data, Dice& dice) {
  for (std::uint64_t i = dice.between(1, 40); i > 0; --i) {
    data.push_back(static_cast<std::uint8_t>(dice.between('a', 'z')));
  }
  data.push_back('\n');
}

/// An image whose payload is full of bytes that would be commands elsewhere.
void appendImage(ByteBuffer& data, Dice& dice) {
  const std::uint64_t width = dice.between(1, 8);
  const std::uint64_t height = dice.between(1, 20);
  append(data, {0x1d, 0x76, 0x30, 0, static_cast<int>(width), 0, static_cast<int>(height), 0});
  for (std::uint64_t i = width * height; i > 0; --i) {
    data.push_back(
        dice.among<std::uint8_t>({0x17, 0x1b, 0x1d, 0x03, 0x01, 0x00, 0x10, 0x04, 0x06}));
  }
}

void appendSign(ByteBuffer& data, Dice& dice) {
  switch (dice.below(3)) {
    case 0:
      append(data, {0x17, 0x17});
      break;
    case 1:
      append(data, {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00});
      break;
    default:
      append(data, {0x1b, 0x06, 0x01});
      break;
  }
}

void fillData(Case& made, Dice& dice) {
  for (std::uint64_t i = dice.below(12); i > 0; --i) {
    ByteBuffer printed;
    if (dice.oneIn(5)) {
      appendImage(printed, dice);
    } else {
      appendLine(printed, dice);
    }
    made.data.insert(made.data.end(), printed.begin(), printed.end());
    made.onPaper.insert(made.onPaper.end(), printed.begin(), printed.end());
    if (dice.oneIn(40)) {
      appendSign(made.data, dice);
      made.dataMakesSigns = true;
    }
  }
}

void addFaults(Case& made, Dice& dice) {
  const auto number = [&dice](std::uint64_t low, std::uint64_t high) {
    return std::to_string(dice.between(low, high));
  };
  made.faults.emplace_back("seed", std::to_string(made.seed));
  for (std::uint64_t i = dice.below(3); i > 0; --i) {
    switch (dice.below(9)) {
      case 0:
        made.faults.emplace_back("late-reply", number(1, 1500));
        break;
      case 1:
        made.faults.emplace_back("duplicate-reply", number(1, 12));
        break;
      case 2:
        made.faults.emplace_back("drop-reply", number(1, 12));
        break;
      case 3:
        made.faults.emplace_back(
            "stray-byte", dice.among<const char*>({"12@", "1a@", "89@", "1b@"}) + number(1, 12));
        break;
      case 4:
        made.faults.emplace_back("silence", number(1, 12));
        break;
      case 5:
        made.faults.emplace_back("cut-after-in", number(1, 600));
        break;
      case 6:
        made.faults.emplace_back("cut-after-out", number(1, 60));
        break;
      case 7:
        made.faults.emplace_back("at", number(0, 4000) + ":cut=" +
                                           dice.among<const char*>({"drain", "at-once", "reset"}));
        break;
      default:
        made.faults.emplace_back("prints-nothing", "true");
        break;
    }
  }
}

void addTurns(Case& made, Dice& dice) {
  for (std::uint64_t i = dice.below(3); i > 0; --i) {
    const std::string flag =
        dice.among<const char*>({"coverOpen", "receiptPaperEmpty", "cutterError", "paperPresent"});
    const std::uint64_t begin = dice.between(0, 4000);
    made.turns.push_back({std::chrono::milliseconds(begin), flag, true});
    if (!dice.oneIn(3)) {
      made.turns.push_back({std::chrono::milliseconds(begin + dice.between(1, 2500)), flag, false});
    }
  }
}

}  // namespace

Case makeCase(std::uint64_t seed) {
  Dice dice(seed);
  Case made;
  made.seed = seed;
  made.emulation = dice.among({ZKEmulationQuorLine, ZKEmulationESCPOS});
  made.timeoutMillis = dice.among<std::uint32_t>({0, 999, 1000, 2000, 5000});
  made.endTimeoutMillis = dice.among<std::uint32_t>({0, 1000, 5000, 20000});
  made.portSettings = dice.among<const char*>({"", "", "d0", "d1", "d3"});
  made.printer.emplace_back("speed", dice.among<const char*>({"0", "20", "100", "1000"}));
  made.printer.emplace_back("buffer", dice.among<const char*>({"128", "256", "4096"}));
  if (dice.oneIn(2)) {
    addFaults(made, dice);
  }
  if (dice.oneIn(2)) {
    addTurns(made, dice);
  }
  fillData(made, dice);
  return made;
}

std::ostream& operator<<(std::ostream& out, const Case& given) {
  out << "seed " << given.seed << ", emulation " << given.emulation << ", time-outs "
      << given.timeoutMillis << " and " << given.endTimeoutMillis << " ms, settings \""
      << given.portSettings << "\", " << given.data.size() << " bytes";
  for (const auto& [key, value] : given.printer) {
    out << ", " << key << "=" << value;
  }
  for (const auto& [key, value] : given.faults) {
    out << ", " << key << "=" << value;
  }
  for (const Turn& turn : given.turns) {
    out << ", " << turn.flag << (turn.value ? " on" : " off") << " at " << turn.after.count()
        << " ms";
  }
  return out;
}

}  // namespace quordalvane::simulation
