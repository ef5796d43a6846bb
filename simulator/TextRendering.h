#pragma once

#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The paper as UTF-8 text, with one line for each line of print. Alignment and positions become
/// blanks, a feed becomes empty lines, a cut a dashed line. An image, a bar code or a QR code is
/// described in brackets. The last lines are the remarks, each in brackets.
std::string renderText(const Paper& paper);

/// Sentences about the paper for people: which commands could not be shown, and that it was torn
/// off before the end of its job. Empty if neither happened.
std::vector<std::string> remarksOn(const Paper& paper);

}  // namespace quordalvane::simulator
