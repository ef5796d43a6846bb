#include "tools/quorport/doctor/OpeningFindings.h"

#include <grp.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "backends/posix/LinkAccessory.h"
#include "backends/posix/Resolve.h"

namespace quordalvane::tool {
namespace {

struct Cause {
  std::string_view scheme;
  int code;  // of the system
  std::string_view name;
  std::string_view text;
  std::string_view advice;
};

constexpr std::string_view noListener =
    "switch the printer on and check the port, which is 9100 for most printers; another device may "
    "have the address";
constexpr std::string_view noRoute =
    "check the address, the cable and the printer's power; ping the address";
constexpr std::string_view noServer = "start the program that serves the socket";
constexpr std::string_view noSuchLine =
    "plug the printer in and switch it on; ls /dev/serial/by-id shows the lines that are there";
constexpr std::string_view noTerminal =
    "name a serial line, such as /dev/ttyUSB0; a printer at /dev/usb/lp0 is none";
constexpr std::string_view heldLine = "end the other program; fuser -v shows which one it is";

constexpr std::array causes = {
    Cause{"tcp", ECONNREFUSED, "nothing-listens", "nothing listens there", noListener},
    Cause{"tcp", ETIMEDOUT, "unreachable", "nobody answers at the address", noRoute},
    Cause{"tcp", EHOSTUNREACH, "unreachable", "nobody answers at the address", noRoute},
    Cause{"tcp", ENETUNREACH, "unreachable", "no way leads to the address", noRoute},
    Cause{"unix", ECONNREFUSED, "nothing-listens", "nothing listens at the socket", noServer},
    Cause{"unix", ENOENT, "no-such-path", "there is no such socket", noServer},
    Cause{"serial", ENOENT, "no-such-path", "there is no such serial line", noSuchLine},
    Cause{"serial", ENXIO, "no-such-path", "nothing is behind the serial line", noSuchLine},
    Cause{"serial", ENODEV, "no-such-path", "nothing is behind the serial line", noSuchLine},
    Cause{"serial", ENOTTY, "no-tty", "the path is no serial line", noTerminal},
    Cause{"serial", EISDIR, "no-tty", "the path is a folder, no serial line", noTerminal},
    Cause{"serial", EBUSY, "in-use", "another program holds the serial line", heldLine},
};

Finding notOpened(std::string_view cause, std::string_view text, std::string_view advice) {
  return {cause, ExitCode::NoAccessory, std::string(text), std::string(advice)};
}

std::string groupOf(const std::string& path) {
  struct stat file {};
  const group* const owner = ::stat(path.c_str(), &file) == 0 ? ::getgrgid(file.st_gid) : nullptr;
  return owner == nullptr ? "" : owner->gr_name;
}

Finding noPermission(const DeviceSpec& spec) {
  const std::string group = groupOf(spec.place);
  const bool isLine = spec.scheme == "serial" && !group.empty();
  return notOpened(
      "no-permission", "you are not allowed to open it",
      isLine ? "join the group that owns it, and log in again: sudo usermod -aG " + group + " $USER"
             : "ask its owner for the right to read and write it");
}

Finding findingFor(const DeviceSpec& spec, const std::error_code& code) {
  if (code.category() == posix::resolverCategory()) {
    return notOpened("not-resolved", "the name of the host leads to no address",
                     "check its spelling; give the address in figures, as the printer's "
                     "self-test prints it");
  }
  if (code == std::errc::permission_denied && spec.scheme != "tcp") {
    return noPermission(spec);
  }
  for (const Cause& cause : causes) {
    if (cause.scheme == spec.scheme && cause.code == code.value()) {
      return notOpened(cause.name, cause.text, cause.advice);
    }
  }
  return notOpened("not-opened", "it cannot be opened", "see what the system says of it");
}

}  // namespace

Finding whyNotOpened(const DeviceSpec& spec, EAAccessory& accessory) {
  auto* const link = dynamic_cast<posix::LinkAccessory*>(&accessory);
  const std::string why = link == nullptr ? "" : link->lastError();
  if (why.empty()) {
    return notOpened("no-printer", "what it says of itself is not what a printer says",
                     "leave out manufacturer= and protocol=");
  }
  Finding finding = findingFor(spec, link->lastErrorCode());
  finding.text += " (" + printable(why) + ")";
  return finding;
}

}  // namespace quordalvane::tool
