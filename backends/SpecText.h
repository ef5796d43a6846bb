#pragma once

#include <string>
#include <string_view>

/// Small functions for parsing, refusing and writing device texts.
namespace quordalvane::spec {

/// Throws `std::invalid_argument` with the message `why`, which is for people.
[[noreturn]] void refuse(const std::string& why);

/// Throws `std::invalid_argument` unless `place` can be a path of 1 to `longest` bytes.
void checkPath(const std::string& place, std::size_t longest);

/// Returns the device text of `place` in `scheme`, as `parseDeviceSpec` takes it. Commas and
/// backslashes are escaped.
std::string deviceText(std::string_view scheme, std::string_view place);

}  // namespace quordalvane::spec
