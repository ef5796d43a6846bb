#pragma once

#include <string>
#include <vector>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The paper as plain UTF-8 text, a line of text a line: alignment and positions by blanks, a feed
/// as empty lines, a cut as a dashed line. An image, a bar code or a QR code is named in brackets.
/// Last is a line in brackets for each remark on it.
std::string renderText(const Paper& paper);

/// Sentences about the parts that a reader of the paper cannot see: the commands that cannot be
/// shown, if there were any, and that it was torn off before its job's end.
std::vector<std::string> remarksOn(const Paper& paper);

}  // namespace quordalvane::simulator
