#pragma once

#include <string_view>
#include <vector>

namespace quordalvane::simulator {

class PrinterState;

/// Applies the settings of a profile to the printer. A profile is a text of lines KEY=VALUE with
/// the keys of `PrinterState::set`; empty lines and lines that begin with `#` are ignored. `name`
/// is one of `profileNames`, or the path of a file; the path must contain a slash.
///
/// Throws std::invalid_argument and changes nothing if there is no such profile or a line is
/// invalid. The text of the error is for people and names the line and the reason.
void applyProfile(std::string_view name, PrinterState& state);

/// Returns the names of the built-in profiles.
std::vector<std::string_view> profileNames();

}  // namespace quordalvane::simulator
