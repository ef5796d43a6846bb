#include "backends/DeviceSpec.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <stdexcept>

#include "backends/posix/Serial.h"

namespace quordalvane {
namespace {

[[noreturn]] void fail(const std::string& why) {
  throw std::invalid_argument(why);
}

// The text in quotation marks, cut short and without anything that could upset a terminal. The
// simulator has the like for itself: only the virtual back end may look into that room.
std::string quoted(std::string_view text) {
  constexpr std::size_t longest = 60;
  std::string result = "\"";
  for (const char c : text.substr(0, longest)) {
    const bool printable = c >= ' ' && c <= '~';
    result += printable ? c : '?';
  }
  return result + (text.size() > longest ? "...\"" : "\"");
}

void append(std::string& list, std::string_view item) {
  list += list.empty() ? "" : ", ";
  list += item;
}

template <typename Number>
std::optional<Number> number(std::string_view text) {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

// The pieces between the commas, with the backslashes resolved.
std::vector<std::string> splitAtCommas(std::string_view text) {
  std::vector<std::string> pieces(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ',') {
      pieces.emplace_back();
      continue;
    }
    if (text[i] == '\\' && ++i == text.size()) {
      fail("device " + quoted(text) + ": nothing follows the backslash at its end");
    }
    pieces.back() += text[i];
  }
  return pieces;
}

void takeAnyPlace(const std::string& /*place*/) {}

void checkHostAndPort(const std::string& place) {
  parseHostAndPort(place);
}

template <std::size_t longest>
void checkPath(const std::string& place) {
  if (place.empty() || place.size() > longest || place.find('\0') != std::string::npos) {
    fail("path " + quoted(place) + ": takes 1 to " + std::to_string(longest) + " bytes, none zero");
  }
}

struct Scheme {
  std::string_view name;
  void (*checkPlace)(const std::string& place);
};

constexpr std::string_view builtIn = "virtual";

constexpr std::array schemes = {
    Scheme{builtIn, takeAnyPlace}, Scheme{"tcp", checkHostAndPort},
    Scheme{"unix", checkPath<107>},     // what a socket's address holds
    Scheme{"serial", checkPath<4095>},  // what the system takes
};

void setName(DeviceSpec& spec, const std::string& value) {
  spec.identity.name = value;
}
void setSerial(DeviceSpec& spec, const std::string& value) {
  spec.identity.serialNumber = value;
}
void setModel(DeviceSpec& spec, const std::string& value) {
  spec.identity.modelNumber = value;
}
void setMaker(DeviceSpec& spec, const std::string& value) {
  spec.identity.manufacturer = value;
}

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isAddress(std::string_view text) {
  constexpr std::string_view form = "01:23:45:67:89:AB";
  return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                    [](char c, char example) { return example == ':' ? c == ':' : isHexDigit(c); });
}

void setAddress(DeviceSpec& spec, const std::string& value) {
  if (!value.empty() && !isAddress(value)) {
    fail("address=" + quoted(value) +
         ": takes six pairs of hex digits joined by colons, such as 01:23:45:67:89:AB");
  }
  spec.identity.address = value;
}

void addProtocol(DeviceSpec& spec, const std::string& value) {
  spec.identity.protocolStrings.push_back(value);
}

void setId(DeviceSpec& spec, const std::string& value) {
  spec.id = number<std::uint64_t>(value);
  if (!spec.id) {
    fail("id=" + quoted(value) + ": takes a number from 0 to 18446744073709551615");
  }
}

void setBaud(DeviceSpec& spec, const std::string& value) {
  const auto rates = posix::baudRates();
  const auto baud = number<unsigned>(value);
  if (!baud || std::find(rates.begin(), rates.end(), *baud) == rates.end()) {
    std::string listed;
    for (const unsigned rate : rates) {
      append(listed, std::to_string(rate));
    }
    fail("baud=" + quoted(value) + ": takes one of " + listed);
  }
  spec.baud = *baud;
}

struct Key {
  std::string_view name;
  std::string_view onlyOn;  // a scheme; empty for all of them
  void (*set)(DeviceSpec& spec, const std::string& value);

  bool isFor(const std::string& scheme) const { return onlyOn.empty() || onlyOn == scheme; }
};

constexpr std::string_view repeatable = "protocol";

constexpr std::array keys = {
    Key{"name", "", setName},
    Key{"serial", "", setSerial},
    Key{"model", "", setModel},
    Key{"manufacturer", "", setMaker},
    Key{repeatable, "", addProtocol},
    Key{"address", "", setAddress},
    Key{"id", "", setId},
    Key{"baud", "serial", setBaud},
};

const Key* findKey(const std::string& name, const std::string& scheme) {
  const auto* const found = std::find_if(keys.begin(), keys.end(), [&](const Key& key) {
    return key.name == name && key.isFor(scheme);
  });
  return found == keys.end() ? nullptr : found;
}

[[noreturn]] void failUnknown(const std::string& name, const std::string& scheme) {
  std::string listed;
  for (const Key& key : keys) {
    if (key.isFor(scheme)) {
      append(listed, key.name);
    }
  }
  fail("key " + quoted(name) + ": " + scheme + ": takes " + listed);
}

// Sets the keys in the order in which they were given.
class KeySetter {
 public:
  explicit KeySetter(DeviceSpec& spec) : spec_(spec) {}

  void set(const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    if (equals == std::string::npos || name.empty()) {
      fail(quoted(assignment) + ": takes key=value");
    }
    set(name, assignment.substr(equals + 1));
  }

 private:
  void set(const std::string& name, const std::string& value) {
    const Key* const key = findKey(name, spec_.scheme);
    if (key == nullptr && spec_.scheme == builtIn) {
      spec_.options.emplace_back(name, value);
      return;
    }
    if (key == nullptr) {
      failUnknown(name, spec_.scheme);
    }
    const bool first = seen_.insert(name).second;
    if (name == repeatable && first) {
      spec_.identity.protocolStrings.clear();
    } else if (!first && name != repeatable) {
      fail("key " + quoted(name) + ": takes one value, and was given twice");
    }
    key->set(spec_, value);
  }

  DeviceSpec& spec_;
  std::set<std::string> seen_;
};

const Scheme& schemeOf(std::string_view text) {
  const std::size_t colon = text.find(':');
  const auto* const found = std::find_if(schemes.begin(), schemes.end(), [&](const Scheme& known) {
    return colon != std::string_view::npos && known.name == text.substr(0, colon);
  });
  if (found == schemes.end()) {
    fail("device " + quoted(text) +
         ": takes virtual:, tcp:HOST:PORT, unix:PATH or serial:PATH, then ,key=value");
  }
  return *found;
}

}  // namespace

DeviceSpec parseDeviceSpec(std::string_view text) {
  const Scheme& scheme = schemeOf(text);
  auto pieces = splitAtCommas(text.substr(scheme.name.size() + 1));
  // The printer in this process needs no place: its keys may follow the colon at once.
  if (scheme.name == builtIn && pieces.front().find('=') != std::string::npos) {
    pieces.insert(pieces.begin(), "");
  }

  DeviceSpec spec;
  spec.scheme = scheme.name;
  spec.place = pieces.front();
  scheme.checkPlace(spec.place);
  spec.identity.name = spec.place.empty() ? "virtual printer" : spec.place;
  KeySetter setter(spec);
  std::for_each(pieces.begin() + 1, pieces.end(), [&](const auto& piece) { setter.set(piece); });
  return spec;
}

HostAndPort parseHostAndPort(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  const std::string_view written = text.substr(0, colon);
  const bool bracketed = written.size() > 2 && written.front() == '[' && written.back() == ']';
  const std::string_view host = bracketed ? written.substr(1, written.size() - 2) : written;
  const auto port = colon == std::string_view::npos
                        ? std::uint16_t{0}
                        : number<std::uint16_t>(text.substr(colon + 1)).value_or(0);

  constexpr std::size_t longestHost = 253;
  const bool plain =
      std::all_of(host.begin(), host.end(), [](char c) { return c > ' ' && c <= '~'; });
  const bool ambiguous = !bracketed && host.find_first_of(":[]") != std::string_view::npos;
  if (host.empty() || host.size() > longestHost || !plain || ambiguous || port == 0) {
    fail("address " + quoted(text) +
         ": takes HOST:PORT, the port from 1 to 65535, and an IPv6 address in brackets");
  }
  return {.host = std::string(host), .port = port};
}

}  // namespace quordalvane
