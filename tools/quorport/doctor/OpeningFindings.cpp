#include "tools/quorport/doctor/OpeningFindings.h"

#include <grp.h>
#include <sys/stat.h>

#include <system_error>

#include "backends/Devices.h"
#include "backends/Schemes.h"
#include "text/Quoted.h"

namespace quordalvane::tool {
namespace {

// The default of `code` means that the device cannot be reached. If another program uses the
// device, `code` is `ExitCode::NotReady`, because the device becomes free later.
Finding notOpened(std::string_view cause, std::string_view text, std::string_view advice,
                  ExitCode code = ExitCode::NoAccessory) {
  return {cause, code, std::string(text), std::string(advice)};
}

// Returns the group that has more rights to the file than other users; "" if there is none, or if
// it is the group root.
std::string groupOf(const std::string& path) {
  struct stat file {};
  if (path.empty() || ::stat(path.c_str(), &file) != 0 || file.st_gid == 0 ||
      (file.st_mode & S_IWGRP) == 0) {
    return "";
  }
  const group* const owner = ::getgrgid(file.st_gid);
  return owner == nullptr ? "" : owner->gr_name;
}

Finding noPermission(const std::string& file) {
  const std::string group = groupOf(file);
  return notOpened("no-permission", "you are not allowed to open the device",
                   group.empty()
                       ? "ask the owner of the device for the right to read and write it"
                       : "join the group that owns the device, and log in again: sudo usermod "
                         "-aG " +
                             group + " $USER");
}

Finding findingFor(const DeviceSpec& spec, const std::error_code& code) {
  const Scheme* const scheme = findScheme(spec.scheme);
  if (scheme->fileOf != nullptr && code == std::errc::permission_denied) {
    return noPermission(scheme->fileOf(spec));
  }
  for (const OpenCause& cause : scheme->causes) {
    if (cause.fits(code)) {
      return notOpened(cause.name, cause.text, cause.advice, codeOfOpening(code));
    }
  }
  return notOpened("not-opened", "the device cannot be opened", "read the system's message");
}

}  // namespace

ExitCode codeOfOpening(const std::error_code& error) {
  return error == std::errc::device_or_resource_busy ? ExitCode::NotReady : ExitCode::NoAccessory;
}

Finding whyNotOpened(const DeviceSpec& spec, EAAccessory& accessory) {
  const std::string why = lastOpenError(accessory);
  if (why.empty()) {
    return notOpened("no-printer", "the device's manufacturer or protocol is not a printer's",
                     "leave out manufacturer= and protocol=");
  }
  Finding finding = findingFor(spec, lastOpenErrorCode(accessory));
  finding.text += " (" + printable(why) + ")";
  return finding;
}

}  // namespace quordalvane::tool
