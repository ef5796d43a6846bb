#include <algorithm>
#include <cerrno>
#include <utility>

#include "backends/HostAndPort.h"
#include "backends/posix/Connect.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/Resolve.h"
#include "backends/posix/Schemes.h"

namespace quordalvane::posix {
namespace {

// Most network printers listen on this port.
constexpr std::string_view usualPort = ":9100";

constexpr std::string_view noListener =
    "switch the printer on and check the port, which is 9100 for most printers; another device may "
    "have the address";
constexpr std::string_view noRoute =
    "check the address, the cable and the printer's power; ping the address";

constexpr OpenCause causes[] = {
    {ECONNREFUSED, "nothing-listens", "nothing listens at the address and port", noListener},
    {ETIMEDOUT, "unreachable", "nobody answers at the address", noRoute},
    {EHOSTUNREACH, "unreachable", "nobody answers at the address", noRoute},
    {ENETUNREACH, "unreachable", "there is no route to the address", noRoute},
    {OpenCause::anyCode, "not-resolved", "the host name cannot be resolved",
     "check its spelling; use the numeric address, which the printer's self-test prints",
     resolverCategory},
};

void checkPlace(const std::string& place) {
  parseHostAndPort(place);
}

// If `text` is only a host, returns this host with the usual port; otherwise returns nullopt. A
// host is a name or an address; a text that could be a path or a key is not a host.
std::optional<std::string> placeMeantBy(std::string_view text) {
  const bool isBracketed = text.starts_with('[') && text.ends_with(']');
  const bool isHost = std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' ||
           c == '-' || c == '_';
  });
  return !text.empty() && (isBracketed || isHost)
             ? std::optional(std::string(text) + std::string(usualPort))
             : std::nullopt;
}

std::shared_ptr<EAAccessory> make(const DeviceSpec& spec, AccessoryIdentity identity,
                                  Clock& /*clock*/) {
  return std::make_shared<LinkAccessory>(std::move(identity), [at = parseHostAndPort(spec.place)] {
    return connectTcp(at.host, at.port);
  });
}

}  // namespace

constinit const Scheme tcpScheme = {
    .name = "tcp",
    .place = "HOST:PORT",
    .about = "a printer on the network",
    .checkPlace = checkPlace,
    .make = make,
    .ifSilent =
        "if another program uses the printer, end that program, because the printer may serve only "
        "one program at a time; check that the address belongs to the printer; switch the printer "
        "off and on only if nobody prints on it",
    .ifNotUnderstood = "check that the address and the port belong to the printer",
    .causes = causes,
    .placeMeantBy = placeMeantBy,
};

}  // namespace quordalvane::posix
