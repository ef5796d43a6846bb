#include <algorithm>
#include <array>
#include <cctype>
#include <initializer_list>
#include <stdexcept>

#include "tests/model/ModelLog.h"

namespace quordalvane::test {
namespace {

const std::string protocol = "com.quordalvane.receipt";

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

bool isHexDigit(char c) {
  return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

/// The first Bluetooth address in the text, or "": six pairs of hexadecimal digits, joined by
/// colons. Directly before and after the address there is no hexadecimal digit.
std::string addressIn(const std::string& text) {
  constexpr std::size_t length = 17;
  for (std::size_t at = 0; at + length <= text.size(); ++at) {
    bool isAddress = (at == 0 || !isHexDigit(text[at - 1])) &&
                     (at + length == text.size() || !isHexDigit(text[at + length]));
    for (std::size_t place = 0; place < length; ++place) {
      const char c = text[at + place];
      isAddress = isAddress && (place % 3 == 2 ? c == ':' : isHexDigit(c));
    }
    if (isAddress) {
      return text.substr(at, length);
    }
  }
  return "";
}

/// Whether the bytes are exactly one character in UTF-8.
bool isCharacter(const std::string& bytes) {
  const auto fits = [&bytes](std::initializer_list<std::array<int, 2>> ranges) {
    return std::equal(bytes.begin(), bytes.end(), ranges.begin(), ranges.end(),
                      [](char c, const std::array<int, 2>& range) {
                        const int byte = static_cast<unsigned char>(c);
                        return range[0] <= byte && byte <= range[1];
                      });
  };
  constexpr std::array<int, 2> more = {0x80, 0xBF};
  return fits({{0x00, 0x7F}}) || fits({{0xC2, 0xDF}, more}) ||
         fits({{0xE0, 0xE0}, {0xA0, 0xBF}, more}) || fits({{0xE1, 0xEC}, more, more}) ||
         fits({{0xED, 0xED}, {0x80, 0x9F}, more}) || fits({{0xEE, 0xEF}, more, more}) ||
         fits({{0xF0, 0xF0}, {0x90, 0xBF}, more, more}) || fits({{0xF1, 0xF3}, more, more, more}) ||
         fits({{0xF4, 0xF4}, {0x80, 0x8F}, more, more});
}

/// The text after its first three characters. A byte that belongs to no character counts as a
/// character.
std::string withoutThreeCharacters(std::string text) {
  for (int count = 0; count < 3; ++count) {
    std::size_t length = 4;
    while (length > 1 && (length > text.size() || !isCharacter(text.substr(0, length)))) {
      --length;
    }
    if (text.empty()) {
      throw std::out_of_range("a port name below three characters");
    }
    text.erase(0, length);
  }
  return text;
}

std::string listed(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) {
    result += (result.empty() ? "" : ", ") + text;
  }
  return "(" + result + ")";
}

}  // namespace

Model::Model(Creation creation, Platform& platform, Trace& trace)
    : creation_(std::move(creation)),
      platform_(platform),
      trace_(trace),
      receiver_(std::shared_ptr<const void>(std::make_shared<char>(), this)),
      limit_(static_cast<std::int32_t>(creation_.timeout / 1000)),
      endMillis_(creation_.timeout) {
  const Log log(*this, "initWithPortName:portSettings:timeout:emulation:");
  const std::string entry = textOr(creation_.portName) + ", " + textOr(creation_.portSettings) +
                            ", " + signed32(creation_.timeout) + ", " + number(creation_.emulation);
  log.start(entry);
  parseDataTimeoutOption();
  log.end(entry + ", -> <self>");
}

void Model::parseDataTimeoutOption() {
  const Log log(*this, "parseDataTimeoutOption");
  const std::string settings = creation_.portSettings.value_or("");
  const auto isDigit = [](char c) { return '0' <= c && c <= '9'; };
  log.start("");
  std::size_t place = 0;
  while (place < settings.size() &&
         !(settings[place] == 'd' && place + 1 < settings.size() && isDigit(settings[place + 1]))) {
    ++place;
  }
  if (place == settings.size()) {
    log.process(
        "[regex matchesInString:portSettings_ options:0 range:NSMakeRange(0, "
        "portSettings_.length)].count == 0, d[0-9]+, " +
        textOr(creation_.portSettings) + ", 0, 0, " + std::to_string(settings.size()) + ", 0");
    log.end("");
    return;
  }
  std::int64_t seconds = 0;
  for (++place; place < settings.size() && isDigit(settings[place]); ++place) {
    seconds = std::min<std::int64_t>(seconds * 10 + (settings[place] - '0'), 2147483647);
  }
  if (seconds > 255) {
    log.error("dataTimeout > MAX_DATA_TIMEOUT, " + number(seconds) + ", 255");
  } else {
    dataTimeoutSeconds_ = seconds;
    log.process("dataTimeout: " + number(seconds));
  }
  log.end("");
}

bool Model::open() {
  const Log log(*this, "open");
  log.start("");
  bool opened = survives(log, [this] {
    platform_.isMainThread();
    open71();
  });
  const bool paused = survives(log, [this] { platform_.clock().usleep(100000); });
  opened = opened && paused && result_.value_or(false);
  log.end("-> " + number(opened));
  return opened;
}

void Model::open71() {
  const Log log(*this, "open71");
  log.start("");
  result_ = false;
  const bool survived = survives(log, [&] {
    select();
    result_ = openSession(log);
  });
  result_ = survived && *result_;
  log.end("");
}

bool Model::openSession(const Log& log) {
  if (!accessory_) {
    log.error("_selectedAccessory == nil, 0x0");
    return false;
  }
  session_ = accessory_->openSession(protocol);
  if (!session_) {
    log.error("_session == nil, (null)");
    return false;
  }
  const auto begin = [this](NSStream& stream) {
    stream.setDelegate(receiver_);
    stream.scheduleInRunLoop(platform_.currentRunLoop(), NSDefaultRunLoopMode);
    stream.open();
  };
  begin(*input());
  begin(*output());
  return true;
}

/// Runs code that may throw. If it throws, logs the exception and returns false.
bool Model::survives(const Log& log, const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const std::exception& raised) {
    log.error(raised.what());
  } catch (...) {
    log.error("Throws exception, class: quordalvane::test::Surprise");
  }
  return false;
}

void Model::select() {
  const Log log(*this, "open71");
  std::optional<std::string> designation;
  if (creation_.portName && lower(*creation_.portName) != "bt:") {
    designation = withoutThreeCharacters(*creation_.portName);
  }
  log.process("specifiedPortName: " + textOr(designation));
  const auto accessories = platform_.sharedAccessoryManager().connectedAccessories();
  accessory_ = nullptr;
  session_ = nullptr;
  for (const auto& accessory : accessories) {
    if (fits(*accessory, designation)) {
      adopt(accessory);
      return;
    }
  }
}

void Model::adopt(const std::shared_ptr<EAAccessory>& accessory) {
  const Log log(*this, "open71");
  if (accessory->modelNumber() == "XQ700") {
    log.process("[accessory.modelNumber isEqualToString:@\"XQ700\"], XQ700");
    isBrondel_ = true;
  }
  accessory_ = accessory;
  connectionID_ = accessory->connectionID();
  name_ = accessory->name();
  serialNumber_ = accessory->serialNumber();
}

bool Model::fits(EAAccessory& accessory, const std::optional<std::string>& designation) {
  const Log log(*this, "open71");
  log.process("", [&accessory] { return accessory.description(); });
  const auto model = accessory.modelNumber();
  if (model && model->starts_with("KLT") && model->ends_with("-U")) {
    log.process(*model + " is UsbDevice");
    return false;
  }
  if (designation && !isDesignated(accessory, *designation)) {
    return false;
  }
  const auto maker = accessory.manufacturer();
  if (!maker || lower(*maker) != "quor dalvane") {
    log.process(
        "[accessory.manufacturer caseInsensitiveCompare:@\"quor dalvane\"] != NSOrderedSame, " +
        textOr(maker));
    return false;
  }
  const auto protocols = accessory.protocolStrings();
  if (std::find(protocols.begin(), protocols.end(), protocol) == protocols.end()) {
    log.process("[accessory.protocolStrings indexOfObject:quorProtocol] == NSNotFound, " +
                listed(protocols) + ", " + protocol);
    return false;
  }
  return true;
}

bool Model::isDesignated(EAAccessory& accessory, const std::string& designation) {
  const Log log(*this, "open71");
  const auto name = accessory.name();
  if (name == designation) {
    return true;
  }
  log.process("[accessory.name isEqualToString:specifiedPortName] == NO, " + textOr(name) + ", " +
              designation);
  const auto serialNumber = accessory.serialNumber();
  if (serialNumber == designation) {
    return true;
  }
  log.process("[accessory.serialNumber isEqualToString:specifiedPortName] == NO, " +
              textOr(serialNumber) + ", " + designation);
  const std::string specified = addressIn(designation);
  log.process("specifiedMACAddr: " + specified);
  if (specified.empty()) {
    log.process("[specifiedMACAddr isEqualToString:@\"\"], " + specified);
    return false;
  }
  if (specified != designation) {
    log.process("[specifiedMACAddr isEqualToString:specifiedPortName] == NO, " + specified + ", " +
                designation);
    return false;
  }
  EAAccessoryManager& manager = platform_.sharedAccessoryManager();
  const std::string own =
      manager.readsAddresses() ? manager.addressOf(accessory) : addressIn(accessory.description());
  if (own.empty()) {
    log.process("[accessoryMACAddr isEqualToString:@\"\"], " + own);
    return false;
  }
  if (lower(own) != lower(specified)) {
    log.process(
        "[accessoryMACAddr compare:specifiedMACAddr options:NSCaseInsensitiveSearch] != "
        "NSOrderedSame, " +
        own + ", " + specified);
    return false;
  }
  return true;
}

void Model::close() {
  const Log log(*this, "close");
  log.start("");
  survives(log, [&] {
    const float version = std::stof(platform_.currentDevice().systemVersion());
    if (version >= 10.0F) {
      log.process("UIDevice.currentDevice.systemVersion.floatValue >= 10.0, " +
                  std::to_string(version));
      platform_.clock().usleep(100000);
    }
  });
  survives(log, [this] { platform_.isMainThread(); });
  close71();
  log.end("");
}

void Model::close71() {
  const Log log(*this, "close71");
  log.start("");
  survives(log, [this] {
    const auto end = [this](NSStream& stream) {
      stream.close();
      stream.removeFromRunLoop(platform_.currentRunLoop(), NSDefaultRunLoopMode);
      stream.setDelegate({});
    };
    if (session_) {
      end(*output());
      end(*input());
    }
  });
  session_ = nullptr;
  accessory_ = nullptr;
  connectionID_ = 0;
  name_.reset();
  serialNumber_.reset();
  log.end("");
}

bool Model::isConnected() {
  const Log log(*this, "isConnected");
  log.start("");
  if (!accessory_) {
    log.error("_selectedAccessory == nil, 0x0");
  }
  const bool connected = accessory_ && accessory_->isConnected();
  log.end("-> " + number(connected));
  return connected;
}

}  // namespace quordalvane::test
