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
        "if another program uses the printer, end that program, because the printer may serve only "
        "one program at a time; check that the socket belongs to the printer",
    .ifNotUnderstood = "check that the socket belongs to the printer",
    .causes = causes,
    .fileOf = fileOf,
};

}  // namespace quordalvane::posix
