#pragma once

#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// Returns the paper as UTF-8 text, with one line for each line of print. Alignment and positions
/// become blanks, a feed becomes empty lines, and a cut becomes a dashed line. An image, a bar code
/// or a QR code is described in brackets. The last lines are the remarks (see `remarksOn`), each in
/// brackets.
std::string renderText(const Paper& paper);

/// Returns remarks for the user. One remark lists the commands that could not be shown. Another one
/// says that the paper was torn off before the end of its job. A remark that does not apply is left
/// out.
std::vector<std::string> remarksOn(const Paper& paper);

}  // namespace quordalvane::simulator
