#pragma once

#include <string>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The paper as plain UTF-8 text, a line of text a line: alignment and positions by blanks, a feed
/// as empty lines, a cut as a dashed line. An image, a bar code or a QR code is named in brackets.
/// Last comes a line for the commands that cannot be shown, if there were any.
std::string renderText(const Paper& paper);

/// "EAN-13" and the like.
std::string symbologyName(Symbology symbology);

}  // namespace quordalvane::simulator
