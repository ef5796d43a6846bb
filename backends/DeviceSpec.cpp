#include "backends/DeviceSpec.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

#include "backends/Schemes.h"
#include "backends/SpecText.h"
#include "text/Hex.h"
#include "text/Number.h"
#include "text/Quoted.h"

namespace quordalvane {
namespace {

using spec::refuse;

void append(std::string& list, std::string_view item) {
  list += list.empty() ? "" : ", ";
  list += item;
}

// Splits the text at its commas and resolves the backslashes.
std::vector<std::string> splitAtCommas(std::string_view text) {
  std::vector<std::string> pieces(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ',') {
      pieces.emplace_back();
      continue;
    }
    if (text[i] == '\\' && ++i == text.size()) {
      refuse("device " + inQuotes(text) + ": nothing follows the backslash at its end");
    }
    pieces.back() += text[i];
  }
  return pieces;
}

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

bool isAddress(std::string_view text) {
  constexpr std::string_view form = "01:23:45:67:89:AB";
  return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                    [](char c, char example) { return example == ':' ? c == ':' : isHexDigit(c); });
}

void setAddress(DeviceSpec& spec, const std::string& value) {
  if (!value.empty() && !isAddress(value)) {
    refuse("address=" + inQuotes(value) +
           ": takes six pairs of hex digits joined by colons, such as 01:23:45:67:89:AB");
  }
  spec.identity.address = value;
}

void addProtocol(DeviceSpec& spec, const std::string& value) {
  spec.identity.protocolStrings.push_back(value);
}

void setId(DeviceSpec& spec, const std::string& value) {
  spec.id = numberIn<std::uint64_t>(value);
  if (!spec.id) {
    refuse("id=" + inQuotes(value) + ": takes a number from 0 to 18446744073709551615");
  }
}

void setProof(DeviceSpec& spec, const std::string& value) {
  const auto proof = proofNamed(value);
  if (!proof) {
    refuse("proof=" + inQuotes(value) + ": takes " + proofNames());
  }
  spec.identity.proof = *proof;
}

struct CommonKey {
  std::string_view name;
  void (*set)(DeviceSpec& spec, const std::string& value);
};

constexpr std::string_view repeatable = "protocol";

constexpr std::array commonKeys = {
    CommonKey{"name", setName},
    CommonKey{"serial", setSerial},
    CommonKey{"model", setModel},
    CommonKey{"manufacturer", setMaker},
    CommonKey{repeatable, addProtocol},
    CommonKey{"address", setAddress},
    CommonKey{"id", setId},
    CommonKey{"proof", setProof},
};

template <typename Keys>
auto findKey(const Keys& keys, std::string_view name) {
  const auto found =
      std::find_if(keys.begin(), keys.end(), [&](const auto& key) { return key.name == name; });
  return found == keys.end() ? nullptr : &*found;
}

[[noreturn]] void refuseKey(const std::string& name, const Scheme& scheme) {
  std::string listed;
  for (const CommonKey& key : commonKeys) {
    append(listed, key.name);
  }
  for (const SchemeKey& key : scheme.keys) {
    append(listed, key.name);
  }
  refuse("key " + inQuotes(name) + ": " + std::string(scheme.name) + ": takes " + listed);
}

class KeySetter {
 public:
  KeySetter(const Scheme& scheme, DeviceSpec& spec) : scheme_(scheme), spec_(spec) {}

  void set(const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    if (equals == std::string::npos || name.empty()) {
      refuse(inQuotes(assignment) + ": takes key=value");
    }
    set(name, assignment.substr(equals + 1));
  }

 private:
  void set(const std::string& name, const std::string& value) {
    if (const CommonKey* const key = findKey(commonKeys, name)) {
      const bool isFirst = isFirstOf(name);
      if (name == repeatable && isFirst) {
        spec_.identity.protocolStrings.clear();
      }
      key->set(spec_, value);
    } else {
      setOption(name, value);
    }
  }

  void setOption(const std::string& name, const std::string& value) {
    const SchemeKey* const key = findKey(scheme_.keys, name);
    if (key == nullptr && scheme_.moreKeys.empty()) {
      refuseKey(name, scheme_);
    }
    if (key != nullptr) {
      isFirstOf(name);
      if (!key->takes(value)) {
        refuse(name + "=" + inQuotes(value) + ": takes " + std::string(key->values));
      }
    }
    spec_.options.emplace_back(name, value);
  }

  bool isFirstOf(const std::string& name) {
    const bool isFirst = seen_.insert(name).second;
    if (!isFirst && name != repeatable) {
      refuse("key " + inQuotes(name) + " was given twice, but takes only one value");
    }
    return isFirst;
  }

  const Scheme& scheme_;
  DeviceSpec& spec_;
  std::set<std::string> seen_;
};

bool takesPlace(const Scheme& scheme, const std::string& place) {
  try {
    scheme.checkPlace(place);
    return true;
  } catch (const std::invalid_argument&) {
    return false;
  }
}

// Returns a hint for a place that was given without a scheme: the likely device texts, each of them
// a scheme and `place`. Returns "" if no scheme fits `place`.
std::string offers(const std::string& place) {
  std::string listed;
  const bool isPath = place.starts_with('/');
  for (const Scheme* const scheme : schemes()) {
    const bool isLikely = !scheme->place.empty() && isPath == (scheme->place == "PATH");
    if (isLikely && takesPlace(*scheme, place)) {
      append(listed, inQuotes(std::string(scheme->name) + ":" + place));
    }
  }
  return listed.empty() ? "" : "; perhaps " + listed;
}

[[noreturn]] void refuseScheme(std::string_view text, const std::string& place) {
  std::string listed;
  for (const Scheme* const scheme : schemes()) {
    append(listed, std::string(scheme->name) + ":" + std::string(scheme->place));
  }
  refuse("device " + inQuotes(text) + ": takes " + listed +
         ", followed by any number of ,key=value" + offers(place));
}

// Returns the scheme of the device text `text`. `place` is the part of `text` before the first
// comma. If this part begins with a scheme, the scheme is removed from `place`. Otherwise this
// function chooses the scheme that recognises `place`, and that scheme may complete `place`.
const Scheme& schemeOf(std::string_view text, std::string& place) {
  const std::size_t colon = place.find(':');
  if (const Scheme* const named =
          colon == std::string::npos ? nullptr : findScheme(place.substr(0, colon))) {
    place.erase(0, colon + 1);
    return *named;
  }
  for (const Scheme* const scheme : schemes()) {
    const auto meant = scheme->placeMeantBy == nullptr ? std::nullopt : scheme->placeMeantBy(place);
    if (meant && findScheme(place) == nullptr) {
      place = *meant;
      return *scheme;
    }
  }
  refuseScheme(text, place);
}

}  // namespace

DeviceSpec parseDeviceSpec(std::string_view text) {
  auto pieces = splitAtCommas(text);
  const Scheme& scheme = schemeOf(text, pieces.front());
  if (!scheme.moreKeys.empty() && pieces.front().find('=') != std::string::npos) {
    pieces.insert(pieces.begin(), "");
  }

  DeviceSpec spec;
  spec.scheme = scheme.name;
  spec.place = pieces.front();
  scheme.checkPlace(spec.place);
  spec.identity.name = spec.place.empty() ? std::string(scheme.nameWithoutPlace) : spec.place;
  KeySetter setter(scheme, spec);
  std::for_each(pieces.begin() + 1, pieces.end(), [&](const auto& piece) { setter.set(piece); });
  return spec;
}

}  // namespace quordalvane
