#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "backends/SpecText.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/Schemes.h"
#include "backends/posix/Serial.h"
#include "text/Number.h"

namespace quordalvane::posix {
namespace {

constexpr std::size_t longestPath = 4095;  // the maximum length of a path in the system

constexpr std::string_view noSuchLine =
    "plug the printer in and switch it on; ls /dev/serial/by-id shows the serial lines of this "
    "machine";
constexpr std::string_view noTerminal = "name a serial line, such as /dev/ttyUSB0";

constexpr OpenCause causes[] = {
    {ENOENT, "no-such-path", "there is no such serial line", noSuchLine},
    {ENXIO, "no-such-path", "nothing is connected to the serial line", noSuchLine},
    {ENODEV, "no-such-path", "nothing is connected to the serial line", noSuchLine},
    {ENOTTY, "no-tty", "the path is not a serial line", noTerminal},
    {EISDIR, "no-tty", "the path is a folder and not a serial line", noTerminal},
    {EBUSY, "in-use", "another program uses the serial line", "end the other program"},
    {EINVAL, "not-settable", "the serial line does not take the settings",
     "choose other values of baud=, bits=, parity=, stop= and flow="},
};

constexpr std::array<std::pair<std::string_view, Parity>, 5> parities = {{
    {"none", Parity::None},
    {"even", Parity::Even},
    {"odd", Parity::Odd},
    {"mark", Parity::Mark},
    {"space", Parity::Space},
}};

constexpr std::array<std::pair<std::string_view, Flow>, 3> flows = {{
    {"none", Flow::None},
    {"rtscts", Flow::RtsCts},
    {"xonxoff", Flow::XonXoff},
}};

template <typename Value, std::size_t count>
std::optional<Value> named(const std::array<std::pair<std::string_view, Value>, count>& values,
                           std::string_view name) {
  for (const auto& [known, value] : values) {
    if (known == name) {
      return value;
    }
  }
  return std::nullopt;
}

template <typename Value, std::size_t count>
std::string nameOf(const std::array<std::pair<std::string_view, Value>, count>& values,
                   Value wanted) {
  for (const auto& [name, value] : values) {
    if (value == wanted) {
      return std::string(name);
    }
  }
  return "";
}

bool isBaud(std::string_view value) {
  const auto baud = numberIn<unsigned>(value);
  return baud && *baud >= 50 && *baud <= 4'000'000;
}

bool isBits(std::string_view value) {
  return value == "7" || value == "8";
}

bool isStop(std::string_view value) {
  return value == "1" || value == "2";
}

bool isParity(std::string_view value) {
  return named(parities, value).has_value();
}

bool isFlow(std::string_view value) {
  return named(flows, value).has_value();
}

constexpr SchemeKey keys[] = {
    {"baud", "the bits a second, 50 to 4000000, such as 9600, 19200 or 115200", isBaud},
    {"bits", "the data bits, 7 or 8", isBits},
    {"parity", R"("none", "even", "odd", "mark" or "space")", isParity},
    {"stop", "the stop bits, 1 or 2", isStop},
    {"flow", R"("none", "rtscts" or "xonxoff")", isFlow},
};

SerialSettings settingsOf(const DeviceSpec& spec) {
  SerialSettings settings;
  for (const auto& [key, value] : spec.options) {
    if (key == "baud") {
      settings.baud = numberIn<unsigned>(value).value_or(settings.baud);
    } else if (key == "bits") {
      settings.bits = numberIn<unsigned>(value).value_or(settings.bits);
    } else if (key == "stop") {
      settings.stop = numberIn<unsigned>(value).value_or(settings.stop);
    } else if (key == "parity") {
      settings.parity = named(parities, value).value_or(settings.parity);
    } else if (key == "flow") {
      settings.flow = named(flows, value).value_or(settings.flow);
    }
  }
  return settings;
}

bool hasUsualFraming(const SerialSettings& settings) {
  return settings.bits == 8 && settings.parity == Parity::None && settings.stop == 1;
}

std::string inWords(const SerialSettings& settings) {
  std::string words = "at " + std::to_string(settings.baud) + " baud";
  if (!hasUsualFraming(settings)) {
    words += " with " + std::to_string(settings.bits) + " data bits, parity " +
             nameOf(parities, settings.parity) + " and " + std::to_string(settings.stop) +
             (settings.stop == 1 ? " stop bit" : " stop bits");
  }
  if (settings.flow != Flow::None) {
    words += ", flow control " + nameOf(flows, settings.flow);
  }
  return words;
}

using Options = std::vector<std::pair<std::string, std::string>>;

Options optionsOf(const SerialSettings& settings) {
  return {{"baud", std::to_string(settings.baud)},
          {"bits", std::to_string(settings.bits)},
          {"parity", nameOf(parities, settings.parity)},
          {"stop", std::to_string(settings.stop)},
          {"flow", nameOf(flows, settings.flow)}};
}

std::string keysOf(const Options& wanted, const Options& given) {
  std::string text;
  for (const auto& option : wanted) {
    if (std::find(given.begin(), given.end(), option) == given.end()) {
      text += (text.empty() ? "" : ",") + option.first + "=" + option.second;
    }
  }
  return text;
}

SchemeVariant variant(const DeviceSpec& spec, const SerialSettings& settings,
                      std::string_view cause) {
  SchemeVariant result{.spec = spec, .words = inWords(settings), .keys = "", .cause = cause};
  result.spec.options = optionsOf(settings);
  result.keys = keysOf(result.spec.options, optionsOf(settingsOf(spec)));
  return result;
}

bool isSameFraming(const SerialSettings& one, const SerialSettings& other) {
  return one.bits == other.bits && one.parity == other.parity && one.stop == other.stop;
}

// Returns the given settings, then the other speeds, then the other framings at the given speed,
// and at last the settings without flow control. If a line has flow control by a wire and this wire
// is not connected, the line takes no byte.
std::vector<SchemeVariant> variants(const DeviceSpec& spec) {
  const SerialSettings given = settingsOf(spec);
  std::vector<SchemeVariant> all = {variant(spec, given, "")};
  for (const unsigned baud : usualBaudRates()) {
    if (baud != given.baud) {
      SerialSettings settings = given;
      settings.baud = baud;
      all.push_back(variant(spec, settings, "wrong-speed"));
    }
  }
  constexpr std::pair<unsigned, Parity> framings[] = {
      {8, Parity::None}, {8, Parity::Even}, {8, Parity::Odd}, {7, Parity::Even}, {7, Parity::Odd}};
  for (const auto& [bits, parity] : framings) {
    SerialSettings settings = given;
    settings.bits = bits;
    settings.parity = parity;
    settings.stop = 1;
    if (!isSameFraming(settings, given)) {
      all.push_back(variant(spec, settings, "wrong-parity"));
    }
  }
  if (given.flow != Flow::None) {
    SerialSettings settings = given;
    settings.flow = Flow::None;
    all.push_back(variant(spec, settings, "wrong-flow"));
  }
  return all;
}

void checkPlace(const std::string& place) {
  spec::checkPath(place, longestPath);
}

std::optional<std::string> placeMeantBy(std::string_view text) {
  constexpr std::array<std::string_view, 3> lines = {"/dev/tty", "/dev/serial/", "/dev/pts/"};
  const bool isLine = std::any_of(lines.begin(), lines.end(), [text](std::string_view start) {
    return text.starts_with(start);
  });
  return isLine ? std::optional(std::string(text)) : std::nullopt;
}

std::string fileOf(const DeviceSpec& spec) {
  return spec.place;
}

std::shared_ptr<EAAccessory> make(const DeviceSpec& spec, AccessoryIdentity identity,
                                  Clock& /*clock*/) {
  return std::make_shared<LinkAccessory>(
      std::move(identity),
      [path = spec.place, settings = settingsOf(spec)] { return openSerial(path, settings); });
}

}  // namespace

constinit const Scheme serialScheme = {
    .name = "serial",
    .place = "PATH",
    .about = "a serial line",
    .checkPlace = checkPlace,
    .make = make,
    .ifSilent = "switch the printer on; check the cable at both ends",
    .ifNotUnderstood =
        "set the printer to 8 data bits, no parity, 1 stop bit; check that the "
        "printer is connected to this serial line",
    .causes = causes,
    .keys = keys,
    .placeMeantBy = placeMeantBy,
    .fileOf = fileOf,
    .variants = variants,
};

}  // namespace quordalvane::posix
