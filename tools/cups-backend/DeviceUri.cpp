#include "tools/cups-backend/DeviceUri.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include "backends/DeviceSpec.h"
#include "backends/Schemes.h"
#include "backends/SpecText.h"
#include "text/Number.h"
#include "text/Quoted.h"
#include "tools/cups-backend/Escapes.h"

namespace quordalvane::cups {
namespace {

using spec::refuse;

constexpr std::string_view ownScheme = "quor:";

bool isNoData(char /*c*/) {
  return false;
}

bool isAllData(char /*c*/) {
  return true;
}

std::uint32_t milliseconds(const std::string& key, const std::string& value) {
  const auto millis = numberIn<std::uint32_t>(value);
  if (!millis) {
    refuse(key + "=" + inQuotes(value) + ": takes milliseconds, from 0 to 4294967295");
  }
  return *millis;
}

bool isSecondOf(const std::string& key, const std::string& value, std::string_view first,
                std::string_view second) {
  if (value != first && value != second) {
    refuse(key + "=" + inQuotes(value) + ": takes " + inQuotes(first) + " or " + inQuotes(second));
  }
  return value == second;
}

// Returns false if the key does not belong to the back end itself.
bool setOwnKey(DeviceUri& uri, const std::string& key, const std::string& value) {
  if (key == "emulation") {
    uri.emulation =
        isSecondOf(key, value, "line", "escpos") ? ZKEmulationESCPOS : ZKEmulationQuorLine;
  } else if (key == "timeout") {
    uri.timeout = milliseconds(key, value);
  } else if (key == "end-timeout") {
    uri.endTimeout = milliseconds(key, value);
  } else if (key == "copies") {
    uri.areCopiesTogether = isSecondOf(key, value, "separate", "together");
  } else {
    return false;
  }
  return true;
}

void addQuery(DeviceUri& uri, std::string_view query) {
  while (!query.empty()) {
    const std::string_view pair = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(query.size(), pair.size() + 1));
    const std::size_t equals = pair.find('=');
    if (equals == std::string_view::npos) {
      refuse("the query of a URI must be pairs key=value, joined by &");
    }
    const std::string key = deviceTextOf(pair.substr(0, equals), isAllData);
    const std::string value = deviceTextOf(pair.substr(equals + 1), isAllData);
    if (!setOwnKey(uri, key, value)) {
      uri.device += ',';
      uri.device += key;
      uri.device += '=';
      uri.device += value;
    }
  }
}

// Refuses a URI with a user name or a password, as in USER:PASSWORD@HOST.
void refuseCredentials(std::string_view path, const Scheme* scheme) {
  const bool mayHoldAt = scheme != nullptr && scheme->name != "tcp";
  if (!mayHoldAt && path.find('@') != std::string_view::npos) {
    refuse("the URI contains a user or a password; printers take neither");
  }
}

// Returns true if `place` is a path in the file system without its first slash. In the URI, this
// slash is the one after the scheme: /serial/dev/ttyUSB0 means the path /dev/ttyUSB0.
bool isSystemPath(const Scheme& scheme, std::string_view place) {
  return !place.starts_with('/') && (scheme.place == "PATH" || place.starts_with("dev/"));
}

std::string deviceIn(std::string_view path) {
  const std::string_view inside = path.substr(path.starts_with('/') ? 1 : 0);
  const std::string_view name = inside.substr(0, inside.find_first_of("/:"));
  const Scheme* const scheme = findScheme(name);
  std::string whole = deviceTextOf(path, isNoData);
  refuseCredentials(whole, scheme);
  if (scheme == nullptr) {
    return whole;  // the URI may be a device text without a scheme
  }
  const std::string_view rest = inside.substr(name.size());
  if (rest.starts_with(':')) {
    return deviceTextOf(inside, isNoData);
  }
  const std::string_view place = rest.substr(rest.empty() ? 0 : 1);
  return std::string(name) + (isSystemPath(*scheme, place) ? ":/" : ":") +
         deviceTextOf(place, isNoData);
}

std::string_view withoutAuthority(std::string_view text) {
  if (!text.starts_with("//")) {
    return text;
  }
  if (!text.starts_with("///")) {
    refuse(
        "the URI of a queue must have one slash after quor:, as in quor:/tcp/HOST:PORT; two "
        "slashes would begin a host, a user or a password");
  }
  return text.substr(2);
}

// Splits a device text at its commas and resolves its backslashes.
std::vector<std::string> piecesOf(std::string_view device) {
  std::vector<std::string> pieces(1);
  for (std::size_t i = 0; i < device.size(); ++i) {
    if (device[i] == ',') {
      pieces.emplace_back();
      continue;
    }
    if (device[i] == '\\' && i + 1 < device.size()) {
      ++i;
    }
    pieces.back() += device[i];
  }
  return pieces;
}

bool isPlainInPlace(char c) {
  return std::string_view("-._~:[]/").find(c) != std::string_view::npos;
}

bool isPlainInQuery(char c) {
  return std::string_view("-._~:").find(c) != std::string_view::npos;
}

std::string placeInUri(const Scheme* scheme, std::string_view place) {
  const bool isPath = scheme != nullptr && scheme->place == "PATH" && place.starts_with('/');
  const std::string text = uriTextOf(place.substr(isPath ? 1 : 0), isPlainInPlace);
  return text.starts_with('/') ? "%2F" + text.substr(1) : text;
}

}  // namespace

DeviceUri parseDeviceUri(std::string_view uri) {
  if (!uri.starts_with(ownScheme)) {
    refuse("the URI of a queue of this back end must begin with quor:");
  }
  const std::string_view text = withoutAuthority(uri.substr(ownScheme.size()));
  const std::size_t question = text.find('?');
  DeviceUri result;
  result.device = deviceIn(text.substr(0, question));
  addQuery(result, question == std::string_view::npos ? "" : text.substr(question + 1));
  if (findScheme(parseDeviceSpec(result.device).scheme)->isOfOneProcess) {
    refuse(
        "the virtual printer has no paper; a queue needs a real printer, such as "
        "quor:/tcp/HOST:9100");
  }
  return result;
}

std::string uriOf(std::string_view device) {
  const auto pieces = piecesOf(device);
  const std::size_t colon = pieces.front().find(':');
  const std::string scheme = pieces.front().substr(0, colon);
  std::string uri =
      std::string(ownScheme) + "/" + scheme + "/" +
      placeInUri(findScheme(scheme), std::string_view(pieces.front()).substr(colon + 1));
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    const std::size_t equals = pieces[i].find('=');
    uri += (i == 1 ? "?" : "&") + uriTextOf(pieces[i].substr(0, equals), isPlainInQuery) + "=" +
           uriTextOf(pieces[i].substr(equals + 1), isPlainInQuery);
  }
  return uri;
}

}  // namespace quordalvane::cups
