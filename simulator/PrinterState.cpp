#include "simulator/PrinterState.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>

#include "simulator/Profile.h"
#include "text/Hex.h"
#include "text/Number.h"
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

const std::array<std::string_view, flagCount> flagGroups = {
    "cover", "other", "drawer", "error", "error", "error",     "error",     "error",
    "error", "error", "error",  "error", "error", "error",     "error",     "error",
    "paper", "paper", "paper",  "paper", "paper", "presenter", "presenter", "presenter",
    "slip",  "slip",  "slip",   "slip",  "slip",  "other",
};

namespace {

constexpr std::uint32_t smallestBuffer = 16;
constexpr std::uint32_t longestText = 64;

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
  const auto number = numberIn<Number>(value);
  if (!number || *number > largest) {
    refuse(key, value, takes);
  }
  return *number;
}

bool truthFrom(std::string_view key, std::string_view value) {
  if (value != "true" && value != "false") {
    refuse(key, value, "true or false");
  }
  return value == "true";
}

bool isXonXoff(std::string_view value) {
  if (value != "none" && value != "xonxoff") {
    refuse("flow", value, "\"none\" or \"xonxoff\"");
  }
  return value == "xonxoff";
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

using State = PrinterState;
using Text = std::string_view;
using Kind = SettingForm::Kind;
using Choices = std::vector<Text> (*)();

constexpr std::uint32_t anyNumber = std::numeric_limits<std::uint32_t>::max();

struct Setting {
  Text key;
  Kind kind;
  std::uint32_t least;
  std::uint32_t most;
  Text about;
  void (*set)(State&, Text);
  std::string (*get)(const State&);
  Choices choices = nullptr;   // returns all accepted values
  Choices examples = nullptr;  // returns some of the accepted values
};

std::string truthOf(bool value) {
  return value ? "true" : "false";
}

std::vector<Text> multiBytes() {
  return {"none", "shift-jis", "gb18030", "big5", "euc-kr"};
}

constexpr Setting settings[] = {
    {"speed", Kind::Number, 0, anyNumber, "bytes a second; 0 means no delay",
     [](State& state, Text value) {
       state.bytesPerSecond =
           numberFrom<std::uint32_t>("speed", value, "bytes a second, 0 for unlimited");
     },
     [](const State& state) { return std::to_string(state.bytesPerSecond); }},
    {"buffer", Kind::Number, smallestBuffer, anyNumber,
     "the number of bytes that the printer can store",
     [](State& state, Text value) {
       state.setBufferSize(
           numberFrom<std::uint32_t>("buffer", value, "a count of bytes, 16 or more"));
     },
     [](const State& state) { return std::to_string(state.bufferSize()); }},
    {"flow", Kind::Text, 0, 0, "xonxoff: the byte 0x13 pauses hosts, and 0x11 lets them continue",
     [](State& state, Text value) { state.flowControl = isXonXoff(value); },
     [](const State& state) { return std::string(state.flowControl ? "xonxoff" : "none"); },
     [] {
       return std::vector<Text>{"none", "xonxoff"};
     }},
    {"profile", Kind::Text, 0, 0, "the kind of printer; sets several other settings",
     [](State& state, Text value) { applyProfile(value, state); },
     [](const State& state) { return state.profile; }, nullptr, profileNames},
    {"paper", Kind::Number, 58, 80, "the width of the next roll in millimetres",
     [](State& state, Text value) {
       state.setPaperWidth(numberFrom<unsigned>("paper", value, "58 or 80 (mm)"));
     },
     [](const State& state) { return std::to_string(state.paperMillimetres()); },
     [] {
       return std::vector<Text>{"58", "80"};
     }},
    {"proofs", Kind::Text, 0, 0, "how the printer confirms jobs: the names of proofs, joined by +",
     [](State& state, Text value) { state.dialect.proofs = Proofs::parse(value); },
     [](const State& state) { return state.dialect.proofs.text(); }, nullptr,
     [] {
       return std::vector<Text>{"block+process-id+in-order",
                                "process-id+in-order",
                                "block",
                                "process-id",
                                "in-order",
                                "none"};
     }},
    {"lacks", Kind::Text, 0, 0,
     "commands that the printer lacks, by their first bytes, like 1b4c+1d286b",
     [](State& state, Text value) { state.lacked = LackedCommands::parse(value); },
     [](const State& state) { return state.lacked.text(); }},
    {"lineMode", Kind::Flag, 0, 0, "the printer knows the maker's own commands",
     [](State& state, Text value) { state.dialect.lineMode = truthFrom("lineMode", value); },
     [](const State& state) { return truthOf(state.dialect.lineMode); }},
    {"utf8", Kind::Flag, 0, 0, "the printer reads UTF-8 until a job selects a code page",
     [](State& state, Text value) { state.characters.utf8 = truthFrom("utf8", value); },
     [](const State& state) { return truthOf(state.characters.utf8); }},
    {"codePages", Kind::Text, 0, 0, "the numbers of the code pages, like 0:437+16:1252",
     [](State& state, Text value) { state.characters.setPages(value); },
     [](const State& state) { return state.characters.pages(); }, nullptr,
     [] {
       return std::vector<Text>{"common", "small"};
     }},
    {"multiByte", Kind::Text, 0, 0, "the encoding of multi-byte characters",
     [](State& state, Text value) { state.characters.setMultiByte(value); },
     [](const State& state) { return std::string(nameOf(state.characters.multiByte)); },
     multiBytes},
    {"firmware", Kind::Text, 0, longestText, "the firmware text",
     [](State& state, Text value) { state.setFirmware(value); },
     [](const State& state) { return state.firmware(); }},
    {"maker", Kind::Text, 0, longestText, "the maker that the printer reports",
     [](State& state, Text value) { state.setMaker(value); },
     [](const State& state) { return state.maker(); }},
    {"modelName", Kind::Text, 0, longestText, "the model that the printer reports",
     [](State& state, Text value) { state.setModelName(value); },
     [](const State& state) { return state.modelName(); }},
    {"serialNumber", Kind::Text, 0, longestText, "the serial number that the printer reports",
     [](State& state, Text value) { state.setSerialNumber(value); },
     [](const State& state) { return state.serialNumber(); }},
    {"modelId", Kind::Number, 0, 255, "the model number",
     [](State& state, Text value) {
       state.modelId = numberFrom<std::uint8_t>("modelId", value, "a number from 0 to 255");
     },
     [](const State& state) { return std::to_string(state.modelId); }},
    {"typeId", Kind::Number, 0, 255, "the number of the type",
     [](State& state, Text value) {
       state.typeId = numberFrom<std::uint8_t>("typeId", value, "a number from 0 to 255");
     },
     [](const State& state) { return std::to_string(state.typeId); }},
    {"dip1", Kind::Text, 0, 4, "bank 1 of the DIP switches, four hex digits",
     [](State& state, Text value) { state.dipBanks[0] = bankFrom("dip1", value); },
     [](const State& state) { return hexText(state.dipBanks[0]); }},
    {"dip2", Kind::Text, 0, 4, "bank 2 of the DIP switches, four hex digits",
     [](State& state, Text value) { state.dipBanks[1] = bankFrom("dip2", value); },
     [](const State& state) { return hexText(state.dipBanks[1]); }},
    {"presenterState", Kind::Number, 0, 3, "0 idle, 1 holding paper, 2 retracted, 3 ejected",
     [](State& state, Text value) {
       state.presenterState =
           numberFrom<std::uint8_t>("presenterState", value, "a code from 0 to 3", 3);
     },
     [](const State& state) { return std::to_string(state.presenterState); }},
    {"connectedInterface", Kind::Number, 0, 5,
     "0 unknown, 1 serial, 2 USB, 3 Ethernet, 4 wireless LAN, 5 Bluetooth",
     [](State& state, Text value) {
       state.connectedInterface =
           numberFrom<std::uint8_t>("connectedInterface", value, "a code from 0 to 5", 5);
     },
     [](const State& state) { return std::to_string(state.connectedInterface); }},
};

const Setting* settingNamed(Text key) {
  const auto found = std::find_if(std::begin(settings), std::end(settings),
                                  [&](const Setting& setting) { return setting.key == key; });
  return found == std::end(settings) ? nullptr : found;
}

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
  const Setting* setting = settingNamed(key);
  if (setting == nullptr) {
    throw std::invalid_argument("there is no printer setting " + inQuotes(key) + "; there are " +
                                everyKey());
  }
  setting->set(*this, value);
}

std::optional<std::string> PrinterState::get(std::string_view key) const {
  const Setting* setting = settingNamed(key);
  return setting == nullptr ? std::nullopt : std::optional(setting->get(*this));
}

std::vector<SettingForm> settingForms() {
  std::vector<SettingForm> forms;
  for (const Setting& setting : settings) {
    SettingForm form{setting.key, setting.kind, setting.least, setting.most, setting.about};
    form.isFree = setting.choices == nullptr;
    if (const Choices usual = form.isFree ? setting.examples : setting.choices) {
      form.choices = usual();
    }
    forms.push_back(std::move(form));
  }
  return forms;
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
