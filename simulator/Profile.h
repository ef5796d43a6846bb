#pragma once

#include <string_view>
#include <vector>

namespace quordalvane::simulator {

class PrinterState;

/// Makes the printer one of a kind: applies the settings of a profile. A profile is a text of lines
/// KEY=VALUE with the keys of `PrinterState::set`, empty lines, and lines that begin with `#`.
/// `name` is one of `profileNames`, or the path of a file, which has a slash in it.
///
/// Throws std::invalid_argument, with a text for people that names the line and the reason, if
/// there is no such profile or a line of it is wrong; nothing is changed then.
void applyProfile(std::string_view name, PrinterState& state);

/// The profiles that are built in.
std::vector<std::string_view> profileNames();

}  // namespace quordalvane::simulator
