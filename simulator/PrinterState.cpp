#include "simulator/PrinterState.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>

#include "simulator/Profile.h"
#include "text/Hex.h"
#include "text/Quoted.h"

namespace quordalvane::simulator {

const std::array<std::string_view, flagCount> flagNames = {
    "coverOpen",
    "offline",
    "compulsionSwitch",
    "overTemp",
    "unrecoverableError",
    "cutterError",
    "mechError",
    "headThermistorError",
    "receiveBufferOverflow",
    "pageModeCmdError",
    "paperDetectionError",
    "blackMarkError",
    "jamError",
    "presenterPaperJamError",
    "headUpError",
    "voltageError",
    "receiptBlackMarkDetection",
    "receiptPaperEmpty",
    "receiptPaperNearEmptyInner",
    "receiptPaperNearEmptyOuter",
    "paperPresent",
    "presenterPaperPresent",
    "peelerPaperPresent",
    "stackerFull",
    "slipTOF",
    "slipCOF",
    "slipBOF",
    "validationPaperPresent",
    "slipPaperPresent",
    "etbAvailable",
};

namespace {

constexpr std::size_t smallestBuffer = 16;
constexpr std::size_t longestText = 64;

constexpr std::uint32_t bit(Flag flag) {
  return 1U << static_cast<unsigned>(flag);
}

constexpr std::uint32_t errorBits() {
  return (bit(Flag::VoltageError) << 1U) - bit(Flag::OverTemp);
}

constexpr std::uint32_t stopsPrinting =
    bit(Flag::CoverOpen) | bit(Flag::Offline) | bit(Flag::ReceiptPaperEmpty) | errorBits();

[[noreturn]] void refuse(std::string_view key, std::string_view value, std::string_view takes) {
  throw std::invalid_argument(std::string(key) + " takes " + std::string(takes) + ", not " +
                              inQuotes(value));
}

template <typename Number>
Number numberFrom(std::string_view key, std::string_view value, std::string_view takes,
                  Number largest = std::numeric_limits<Number>::max()) {
  Number number = 0;
  const char* end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, number);
  if (value.empty() || error != std::errc() || stop != end || number > largest) {
    refuse(key, value, takes);
  }
  return number;
}

bool truthFrom(std::string_view key, std::string_view value) {
  if (value != "true" && value != "false") {
    refuse(key, value, "true or false");
  }
  return value == "true";
}

DipBank bankFrom(std::string_view key, std::string_view value) {
  if (value.size() != 4 || !std::all_of(value.begin(), value.end(), isHexDigit)) {
    refuse(key, value, "two bytes as four hex digits");
  }
  DipBank bank{};
  for (std::size_t i = 0; i < bank.size(); ++i) {
    std::from_chars(value.data() + 2 * i, value.data() + 2 * i + 2, bank[i], 16);
  }
  return bank;
}

std::string textFrom(std::string_view key, std::string_view value) {
  const auto printable = [](char c) { return c >= 0x20 && c <= 0x7e; };
  if (value.empty() || value.size() > longestText ||
      !std::all_of(value.begin(), value.end(), printable)) {
    refuse(key, value, "1 to 64 printable ASCII characters");
  }
  return std::string(value);
}

struct Setting {
  std::string_view key;
  void (*set)(PrinterState&, std::string_view);
};

using State = PrinterState;
using Text = std::string_view;

constexpr Setting settings[] = {
    {"firmware", [](State& state, Text value) { state.setFirmware(value); }},
    {"dip1", [](State& state, Text value) { state.dipBanks[0] = bankFrom("dip1", value); }},
    {"dip2", [](State& state, Text value) { state.dipBanks[1] = bankFrom("dip2", value); }},
    {"speed",
     [](State& state, Text value) {
       state.bytesPerSecond =
           numberFrom<std::uint32_t>("speed", value, "bytes a second, 0 for unlimited");
     }},
    {"buffer",
     [](State& state, Text value) {
       state.setBufferSize(
           numberFrom<std::uint32_t>("buffer", value, "a count of bytes, 16 or more"));
     }},
    {"presenterState",
     [](State& state, Text value) {
       state.presenterState =
           numberFrom<std::uint8_t>("presenterState", value, "a code from 0 to 3", 3);
     }},
    {"connectedInterface",
     [](State& state, Text value) {
       state.connectedInterface =
           numberFrom<std::uint8_t>("connectedInterface", value, "a code from 0 to 5", 5);
     }},
    {"paper",
     [](State& state, Text value) {
       state.setPaperWidth(numberFrom<unsigned>("paper", value, "58 or 80 (mm)"));
     }},
    {"proofs", [](State& state, Text value) { state.dialect.proofs = Proofs::parse(value); }},
    {"lacks", [](State& state, Text value) { state.lacked = LackedCommands::parse(value); }},
    {"lineMode",
     [](State& state, Text value) { state.dialect.lineMode = truthFrom("lineMode", value); }},
    {"codePages", [](State& state, Text value) { state.characters.setPages(value); }},
    {"multiByte", [](State& state, Text value) { state.characters.setMultiByte(value); }},
    {"utf8", [](State& state, Text value) { state.characters.utf8 = truthFrom("utf8", value); }},
    {"maker", [](State& state, Text value) { state.setMaker(value); }},
    {"modelName", [](State& state, Text value) { state.setModelName(value); }},
    {"serialNumber", [](State& state, Text value) { state.setSerialNumber(value); }},
    {"modelId",
     [](State& state, Text value) {
       state.modelId = numberFrom<std::uint8_t>("modelId", value, "a number from 0 to 255");
     }},
    {"typeId",
     [](State& state, Text value) {
       state.typeId = numberFrom<std::uint8_t>("typeId", value, "a number from 0 to 255");
     }},
    {"profile", [](State& state, Text value) { applyProfile(value, state); }},
};

std::string everyKey() {
  std::string keys;
  for (const Setting& setting : settings) {
    keys.append(keys.empty() ? "" : ", ").append(setting.key);
  }
  for (std::string_view name : flagNames) {
    keys.append(", ").append(name);
  }
  return keys;
}

}  // namespace

std::optional<Flag> flagNamed(std::string_view name) {
  const auto found = std::find(flagNames.begin(), flagNames.end(), name);
  if (found == flagNames.end()) {
    return std::nullopt;
  }
  return static_cast<Flag>(found - flagNames.begin());
}

bool PrinterState::flag(Flag flag) const {
  const std::uint32_t causes = flag == Flag::Offline ? stopsPrinting : bit(flag);
  return (flags_ & causes) != 0;
}

void PrinterState::setFlag(Flag flag, bool value) {
  flags_ = value ? flags_ | bit(flag) : flags_ & ~bit(flag);
}

void PrinterState::set(std::string_view key, std::string_view value) {
  if (const auto flag = flagNamed(key)) {
    return setFlag(*flag, truthFrom(key, value));
  }
  const auto found = std::find_if(std::begin(settings), std::end(settings),
                                  [&](const Setting& setting) { return setting.key == key; });
  if (found == std::end(settings)) {
    throw std::invalid_argument("there is no printer setting " + inQuotes(key) + "; there are " +
                                everyKey());
  }
  found->set(*this, value);
}

void PrinterState::setFirmware(std::string_view text) {
  firmware_ = textFrom("firmware", text);
}

void PrinterState::setMaker(std::string_view text) {
  maker_ = textFrom("maker", text);
}

void PrinterState::setModelName(std::string_view text) {
  modelName_ = textFrom("modelName", text);
}

void PrinterState::setSerialNumber(std::string_view text) {
  serialNumber_ = textFrom("serialNumber", text);
}

void PrinterState::setBluetoothAddress(std::string_view digits) {
  if (digits.size() != 12 || !std::all_of(digits.begin(), digits.end(), isHexDigit)) {
    refuse("the Bluetooth address", digits, "12 hex digits");
  }
  bluetoothAddress_ = digits;
}

void PrinterState::setBufferSize(std::size_t bytes) {
  if (bytes < smallestBuffer) {
    refuse("buffer", std::to_string(bytes), "a count of bytes, 16 or more");
  }
  bufferSize_ = bytes;
}

void PrinterState::setPaperWidth(unsigned millimetres) {
  if (millimetres != 58 && millimetres != 80) {
    refuse("paper", std::to_string(millimetres), "58 or 80 (mm)");
  }
  paperMillimetres_ = millimetres;
}

void PrinterState::setButtonSecurity(unsigned setting) {
  if (setting > 3) {
    refuse("the button-security setting", std::to_string(setting), "0 to 3");
  }
  dipBanks[0][0] = static_cast<std::uint8_t>((dipBanks[0][0] & 0x3fU) | (setting << 6U));
}

}  // namespace quordalvane::simulator
