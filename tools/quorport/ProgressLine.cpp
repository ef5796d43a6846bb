#include "tools/quorport/ProgressLine.h"

#include <unistd.h>

#include <string>

#include "job/Words.h"
#include "logging/DescriptorOutput.h"

namespace quordalvane::tool {
namespace {

constexpr auto eraseLine = "\r\x1b[K";

}  // namespace

ProgressLine::ProgressLine(int descriptor)
    : descriptor_(descriptor), isShown_(::isatty(descriptor) == 1) {}

ProgressLine::~ProgressLine() {
  if (isShown_) {
    writeAll(descriptor_, eraseLine);
  }
}

void ProgressLine::show(std::uint64_t done, std::uint64_t total) {
  if (isShown_) {
    const std::uint64_t percent = total == 0 ? 100 : done * 100 / total;
    writeAll(descriptor_, eraseLine + ("sent " + grouped(done)) + " of " + grouped(total) +
                              " bytes (" + std::to_string(percent) + " %)");
  }
}

}  // namespace quordalvane::tool
