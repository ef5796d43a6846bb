#include "backends/DeviceIdentity.h"

#include <filesystem>
#include <system_error>

#include "backends/Schemes.h"
#include "text/LetterCase.h"

namespace quordalvane {
namespace {

// Returns the path with all symbolic links resolved. The path need not exist, because the device
// may be unplugged.
std::string throughLinks(const std::string& path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  const auto whole = std::filesystem::weakly_canonical(absolute, error);
  return error ? path : whole.string();
}

}  // namespace

std::string deviceIdentity(const DeviceSpec& spec) {
  const Scheme* const scheme = findScheme(spec.scheme);
  if (scheme == nullptr || scheme->isOfOneProcess) {
    return "";
  }
  const std::string file = scheme->fileOf == nullptr ? "" : scheme->fileOf(spec);
  return spec.scheme + ":" + (file.empty() ? lowerCase(spec.place) : throughLinks(file));
}

}  // namespace quordalvane
