#include <cerrno>
#include <utility>

#include "backends/SpecText.h"
#include "backends/posix/Connect.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/Schemes.h"

namespace quordalvane::posix {
namespace {

constexpr std::size_t longestPath = 107;  // the maximum length of a path in a socket's address

constexpr std::string_view noServer = "start the program that serves the socket";

constexpr OpenCause causes[] = {
    {ECONNREFUSED, "nothing-listens", "nothing listens at the socket", noServer},
    {ENOENT, "no-such-path", "there is no such socket", noServer},
};

void checkPlace(const std::string& place) {
  spec::checkPath(place, longestPath);
}

std::string fileOf(const DeviceSpec& spec) {
  return spec.place;
}

std::shared_ptr<EAAccessory> make(const DeviceSpec& spec, AccessoryIdentity identity,
                                  Clock& /*clock*/) {
  return std::make_shared<LinkAccessory>(std::move(identity),
                                         [path = spec.place] { return connectUnix(path); });
}

}  // namespace

constinit const Scheme unixScheme = {
    .name = "unix",
    .place = "PATH",
    .about = "a local socket",
    .checkPlace = checkPlace,
    .make = make,
    .ifSilent =
        "if another program uses the printer, which serves one at a time, end that program; check "
        "that the socket is the printer's",
    .ifNotUnderstood = "check that the socket is the printer's",
    .causes = causes,
    .fileOf = fileOf,
};

}  // namespace quordalvane::posix
