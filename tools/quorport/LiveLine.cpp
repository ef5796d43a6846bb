#include "tools/quorport/LiveLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include "logging/DescriptorOutput.h"

namespace quordalvane::tool {
namespace {

constexpr auto eraseLine = "\r\x1b[K";

// Returns the longest length of a line: one column less than the terminal has. A longer line would
// wrap and could not be erased.
std::size_t longestOn(int descriptor) {
  constexpr std::size_t usual = 80;
  winsize size{};
  const bool isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return (isKnown ? size.ws_col : usual) - 1;
}

}  // namespace

LiveLine::LiveLine(int descriptor)
    : descriptor_(descriptor), isTerminal_(::isatty(descriptor) == 1) {}

void LiveLine::show(const std::string& text) {
  if (isTerminal_) {
    writeAll(descriptor_, eraseLine + text.substr(0, longestOn(descriptor_)));
  }
}

void LiveLine::hide() {
  if (isTerminal_) {
    writeAll(descriptor_, eraseLine);
  }
}

}  // namespace quordalvane::tool
