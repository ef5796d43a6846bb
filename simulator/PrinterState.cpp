#include "simulator/PrinterState.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>

#include "simulator/Quoted.h"

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
constexpr std::size_t longestFirmware = 64;

constexpr std::uint32_t bit(Flag flag) {
  return 1U << static_cast<unsigned>(flag);
}

constexpr std::uint32_t errorBits() {
  return (bit(Flag::VoltageError) << 1U) - bit(Flag::OverTemp);
}

constexpr std::uint32_t stopsPrinting =
    bit(Flag::CoverOpen) | bit(Flag::Offline) | bit(Flag::ReceiptPaperEmpty) | errorBits();

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

[[noreturn]] void refuse(std::string_view key, std::string_view value, std::string_view takes) {
  throw std::invalid_argument(std::string(key) + " takes " + std::string(takes) + ", not " +
                              quoted(value));
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

std::string everyKey() {
  std::string keys =
      "firmware, dip1, dip2, speed, buffer, presenterState, connectedInterface, paper, "
      "proofs";
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
    setFlag(*flag, truthFrom(key, value));
  } else if (key == "firmware") {
    setFirmware(value);
  } else if (key == "dip1") {
    dipBanks[0] = bankFrom(key, value);
  } else if (key == "dip2") {
    dipBanks[1] = bankFrom(key, value);
  } else if (key == "speed") {
    bytesPerSecond = numberFrom<std::uint32_t>(key, value, "bytes a second, 0 for unlimited");
  } else if (key == "buffer") {
    setBufferSize(numberFrom<std::uint32_t>(key, value, "a count of bytes, 16 or more"));
  } else if (key == "presenterState") {
    presenterState = numberFrom<std::uint8_t>(key, value, "a code from 0 to 3", 3);
  } else if (key == "connectedInterface") {
    connectedInterface = numberFrom<std::uint8_t>(key, value, "a code from 0 to 5", 5);
  } else if (key == "paper") {
    setPaperWidth(numberFrom<unsigned>(key, value, "58 or 80 (mm)"));
  } else if (key == "proofs") {
    dialect.proofs = Proofs::parse(value);
  } else {
    throw std::invalid_argument("there is no printer setting " + quoted(key) + "; there are " +
                                everyKey());
  }
}

void PrinterState::setFirmware(std::string_view text) {
  const auto printable = [](char c) { return c >= 0x20 && c <= 0x7e; };
  if (text.empty() || text.size() > longestFirmware ||
      !std::all_of(text.begin(), text.end(), printable)) {
    refuse("firmware", text, "1 to 64 printable ASCII characters");
  }
  firmware_ = text;
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
